// Everything that a host needs: #include <qvnetcall/QvNetCall4.h> and link QvNetCall4.
#pragma once

#include "qvnetcall/QvNetExeInfo.h"
#include "qvnetcall/QvRvoBuf.h"
#include "qvnetcall/RvoAd.h"
#include "qvnetcall/RvoCloudStorage.h"
#include "qvnetcall/RvoDatabase.h"
#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/RvoFile.h"
#include "qvnetcall/RvoFolder.h"
#include "qvnetcall/RvoFolderEx.h"
#include "qvnetcall/RvoFtp.h"
#include "qvnetcall/RvoIdFile.h"
#include "qvnetcall/RvoIdFileEx.h"
#include "qvnetcall/RvoServer.h"
#include "qvnetcall/ServerRecords.h"
#include "qvnetcall/TempFileInfo.h"
#include "qvnetcall/Version.h"
