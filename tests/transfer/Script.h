// The script of the scripted components, and what they receive; one script for each of their
// libraries.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qv::test {

// An argument of a component, as text.
inline std::string Shown(const char* text) { return text; }
inline std::string Shown(long number) { return std::to_string(number); }
std::string Shown(const wchar_t* text);  // for components that take wide texts; in UTF-8

struct Script {
  int factory_calls = 0;
  bool absent = false;  // the factory returns no object
  int alive = 0;
  std::vector<std::string> calls;                // "Method a,b,c"
  std::map<std::string, std::int32_t> hresults;  // by method; 0 if there is none
  std::map<std::string, long> results;           // the out values, likewise
  std::map<std::string, long> answers;           // to questions about files, by path
  long other_answer = 1;
  bool silent = false;                 // reports no error information, unlike other components
  std::vector<std::string> questions;  // for interfaces, where there are such

  template <class... Args>
  std::int32_t Call(const std::string& method, long* out, Args... args) {
    std::string call(method);
    ((call += (call == method ? " " : ",") + Shown(args)), ...);
    calls.push_back(call);
    const std::int32_t result = hresults[method];
    // A failing call stores a value there that must not be used.
    if (out != nullptr) *out = result < 0 ? 666 : results[method];
    return result;
  }
  template <class Text>
  std::int32_t Ask(Text path, long* out) {
    const auto answer = answers.find(Shown(path));
    *out = answer != answers.end() ? answer->second : other_answer;
    return Call("IsOperatorFileSuc", nullptr, path);
  }
};

// Each library exports this as "TheScript".
using TheScript = Script*();

}  // namespace qv::test
