// What tests and servers exchange in addition to the script.
#pragma once

namespace qv::test {

// Where the classes are in the registry.
inline constexpr const char* kFtpKey = "CLSID\\{5963B49F-D05D-48C5-9D24-F6C09028109A}";
inline constexpr const char* kCscKey = "CLSID\\{72290314-2AB3-42C2-9B36-950E064FA7FE}";

// A variable of the environment: whether the last object ended "inside" an apartment or "outside".
inline constexpr const char* kReleaseVariable = "QV_TEST_RELEASED";

}  // namespace qv::test
