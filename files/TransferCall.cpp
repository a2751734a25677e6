#include "TransferCall.h"

#include "base/call/LastError.h"
#include "base/platform/Platform.h"
#include "qvnetcall/ResultCodes.h"

namespace qv {

namespace {

constexpr const char kStatusFailure[] = "FAILURE";

// The transport reads a request's file from, or writes a reply's file to, the given path.
constexpr unsigned char kHasFile = 1;

}  // namespace

bool NetworkIsHeldForBad() {
  if (ModuleState::Get().cache.State() != cache_state::kNetworkBad) return false;
  call::SetError(error::kOffline, "offline because the network is bad: nothing was sent");
  return true;
}

int TransferCall::Send() {
  if (const int result = exchange_.Send(); result != 0) return result;
  return exchange_.Reply().GetString(nullptr) == kStatusSuccess ? result::kSuccess
                                                                : Refused(result::kTransferRefused);
}

int TransferCall::Upload(const char* local_file) {
  Request().SetFileName(local_file, kHasFile);
  Request().SetMsgFlag(0);
  return Send();
}

int TransferCall::Download(const char* local_file) {
  Request().SetMsgFlag(0);
  CMsgContent& reply = exchange_.Reply();
  reply.SetFileName(local_file, kHasFile);
  if (const int result = exchange_.Send(); result != 0) return result;
  const CString status = reply.GetString(nullptr);
  if (status == kStatusSuccess) return result::kSuccess;
  // The path that the transport used, which may be cut.
  if (*reply.FileName() != '\0') platform::RemoveFile(reply.FileName());
  return Refused(status == kStatusFailure ? result::kDownloadFailed : result::kTransferRefused);
}

}  // namespace qv
