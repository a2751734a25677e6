#pragma once

namespace qv::tool {

// Makes the standard streams carry bytes as they are, and a failed write to them an error, as long
// as it lives. Before the first use of the streams; one at a time.
class Startup {
 public:
  Startup();
  ~Startup();
  Startup(const Startup&) = delete;
  Startup& operator=(const Startup&) = delete;

  // Whether the program was given its arguments as they were written. Where narrow text cannot say
  // them, it is given others, which may be the names of other files.
  [[nodiscard]] static bool HasWholeArguments();

 private:
  unsigned code_page_before_ = 0;  // of the console; 0 when it was left as it is
};

}  // namespace qv::tool
