// What the scripted components are told and what they hear; one script for each of their libraries.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace qv::test {

struct Script {
  int factory_calls = 0;
  int nulls = 0;  // how many times from now on the factory gives no object
  int alive = 0;
  std::vector<std::string> calls;  // "Method a,b,c"
  // By method; 0 when there is none. Negative ones leave the out value alone.
  std::map<std::string, std::int32_t> hresults;
  std::map<std::string, long> results;
  std::map<std::string, long> answers;  // to questions about files, by path; 1 when there is none
  std::function<void(const std::string&)> hook = [](const std::string&) {};
};

// What each library offers under the name "TheScript".
using TheScript = Script*();

}  // namespace qv::test
