// Everything that a host needs: #include <qvnetcall/QvNetCall4.h> and link QvNetCall4.
#pragma once

#include "qvnetcall/RvoDatabase.h"
#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/RvoServer.h"
#include "qvnetcall/TempFileInfo.h"
