// The driver manager's declarations. These headers need windows.h, which must come first.
#pragma once

#include <windows.h>
// This comment keeps clang-format from sorting windows.h after the others.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
