// The driver manager's declarations.
#pragma once

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
