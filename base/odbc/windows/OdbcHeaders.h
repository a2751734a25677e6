// The driver manager's declarations, which here stand on the system's.
#pragma once

#include <windows.h>
// Behind it.
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
