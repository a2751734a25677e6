#include "QueueClient.h"

#include <algorithm>
#include <iterator>

#include "qvnetcall/ResultCodes.h"
#include "tools/qvcall/system/SystemPlaces.h"

namespace qv::tool {
namespace {

struct Entry {
  long result;
  std::string_view meaning;
  std::string_view ftp_advice;
  std::string_view cloud_advice;
};

constexpr std::string_view kLook = "check the path; folders cannot be fetched or copied";
constexpr std::string_view kTryAgain =
    "run it again; allow more tries with --retries, and a slow server more time with --timeout-ms";

constexpr Entry kEntries[] = {
    {QvTransfer_Success, "the call succeeded", "", ""},
    {QvTransfer_NotLoggedIn, "there is no login", "check --host, --login and the password",
     "check --host, --login and the secret key"},
    {QvTransfer_BadArgument, "the host or a path is not valid",
     "check --host, which is [ftp://|ftpes://]NAME[:PORT], and the paths",
     "check --host, which is [https://|http://]NAME[:PORT], and the paths, which begin with the "
     "name of a bucket"},
    {QvTransfer_CannotConnect, "the server cannot be reached",
     "check --host and whether the server requires ftpes://, or does not support it",
     "check --host and whether the store uses http:// or https://"},
    {QvTransfer_LoginRefused, "the server refused the login",
     "check --login and the password; some servers refuse logins without ftpes://",
     "check --login and the secret key, and the clock of this machine"},
    {QvTransfer_NotTrusted, "the server's certificate cannot be verified",
     "name the authority that signed it with --ca-file, and the host as the certificate does",
     "name the authority that signed it with --ca-file, and the host as the certificate does"},
    {QvTransfer_NotFound, "the server has no such file", kLook, kLook},
    {QvTransfer_Refused, "the server refused it",
     "the user may not be allowed to do it, the disk may be full, or the name may be taken",
     "the user may not be allowed to do it, or the bucket may not exist; some stores require "
     "--region or --virtual-host"},
    {QvTransfer_Broken, "the connection was lost or stalled", kTryAgain, kTryAgain},
    {QvTransfer_LocalFile, "the local file cannot be read or written",
     "check the file and its folder, and whether the disk is full",
     "check the file and its folder, and whether the disk is full"},
    {QvTransfer_BadAnswer, "the server's answer makes no sense, or the file arrived wrong",
     "check --host; if the file changed meanwhile, transfer it again",
     "check --host and --region; if the file changed meanwhile, transfer it again"},
    {QvTransfer_Stopped, "interrupted", "run it again for the remaining files",
     "run it again for the remaining files"},
};

constexpr std::string_view kOther = "the call failed with a result that this tool does not know";
constexpr std::string_view kOtherAdvice =
    "if the component is not the one that came with this tool, see its documentation";

}  // namespace

ReturnCode ExplainTransfer(Service service, long result) {
  const auto code = static_cast<int>(result);
  if (result == result::kNoComponent) return {code, "no component", AdviceOnMissing(service)};
  const auto* found = std::find_if(std::begin(kEntries), std::end(kEntries),
                                   [=](const Entry& entry) { return entry.result == result; });
  if (found == std::end(kEntries)) return {code, kOther, kOtherAdvice};
  return {code, found->meaning, service == Service::kFtp ? found->ftp_advice : found->cloud_advice};
}

}  // namespace qv::tool
