// Kept for hosts that include the components' results by this path.
#pragma once

#include "qvnetcall/ResultCodes.h"
