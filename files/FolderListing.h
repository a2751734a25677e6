// What the two ways to list a folder send alike.
#pragma once

#include "qvnetcall/framework/String.h"

namespace qv {

constexpr const char kEveryFile[] = "*.*";

inline CString FlagText(int flag) { return flag != 0 ? "1" : "0"; }

}  // namespace qv
