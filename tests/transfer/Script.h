// What the scripted components are told and what they hear; one script for each of their libraries.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qv::test {

struct Script {
  int factory_calls = 0;
  bool absent = false;  // the factory gives no object
  int alive = 0;
  std::vector<std::string> calls;                // "Method a,b,c"
  std::map<std::string, std::int32_t> hresults;  // by method; 0 when there is none
  std::map<std::string, long> results;           // the out values, likewise
  std::map<std::string, long> answers;           // to questions about files, by path
  long other_answer = 1;
};

// What each library offers under the name "TheScript".
using TheScript = Script*();

}  // namespace qv::test
