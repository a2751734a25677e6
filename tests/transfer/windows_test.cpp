// How components are found through the registry, and what they receive.
#include <gmock/gmock.h>
#include <windows.h>

#include <filesystem>

#include "ScriptedLibrary.h"
#include "base/platform/Platform.h"
#include "qvnetcall/RvoCloudStorage.h"
#include "qvnetcall/RvoFtp.h"
#include "tests/support/ModuleTest.h"
#include "tests/transfer/windows/Registration.h"

namespace qv::test {
namespace {

using testing::ElementsAre;
namespace fs = std::filesystem;

bool IsRegistered(const char* key) {
  HKEY opened = nullptr;
  if (::RegOpenKeyExA(HKEY_CLASSES_ROOT, key, 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  ::RegCloseKey(opened);
  return true;
}

// Returns where the last component was released.
std::string Released() {
  char value[16] = {};
  ::GetEnvironmentVariableA(kReleaseVariable, value, sizeof value);
  return value;
}

// Its death tests start the program again, so that nothing is loaded yet.
class ComDeathTest : public ModuleTest {
 protected:
  ComDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

// Returns the path of a file beside the program.
fs::path Beside(const char* name) {
  return platform::PathFromNarrow(platform::ProgramFolder() + name);
}

// Lets the component in `file` register itself, and unloads it.
void Register(const fs::path& file) {
  void* const library = platform::OpenLibrary(platform::NarrowFromPath(file));
  using Function = HRESULT(STDAPICALLTYPE*)();
  reinterpret_cast<Function>(platform::FindFunction(library, "DllRegisterServer"))();
  platform::CloseLibrary(library);
}

class Com : public ModuleTest {
 protected:
  const ScriptedLibrary library_{"QvCoFtp"};
  Script& script_ = library_.GetScript() = Script();
};

TEST_F(Com, FindsWhatIsRegisteredBeforeWhatIsBesideTheProgram) {
  const fs::path elsewhere = folder_.Path() / "Elsewhere.dll";
  fs::copy_file(Beside("QvCoFtp.dll"), elsewhere);
  Register(elsewhere);
  CRvoFtp ftp;
  EXPECT_EQ(ftp.FtpLogout(), 0);
  EXPECT_EQ(script_.factory_calls, 0);
}

TEST_F(Com, RegistersTheComponentBesideTheProgram) {
  ::RegDeleteTreeA(HKEY_CLASSES_ROOT, kFtpKey);
  CRvoFtp ftp;
  EXPECT_EQ(ftp.FtpLogout(), 0);
  EXPECT_TRUE(IsRegistered(kFtpKey));
  EXPECT_EQ(script_.factory_calls, 1);
}

TEST_F(Com, RunsAnObjectBeforeItAsksForItsInterfaceAndEndsOneWithoutIt) {
  script_.absent = true;
  CRvoFtp ftp;
  EXPECT_EQ(ftp.FtpLogout(), -100);
  EXPECT_THAT(script_.questions, ElementsAre("running", "own", "running", "own"));
  EXPECT_EQ(script_.alive, 0);
}

TEST_F(Com, TakesNoObjectThatDoesNotRun) {
  script_.hresults["Run"] = E_FAIL;
  CRvoFtp ftp;
  EXPECT_EQ(ftp.FtpLogout(), -100);
  EXPECT_EQ(script_.alive, 0);
  script_.hresults["Run"] = S_OK;
  EXPECT_EQ(ftp.FtpLogout(), 0);
}

TEST_F(Com, GivesTextsFromTheCodePageOfTheSystem) {
  const std::map<UINT, const char*> texts = {
      {936, "\xD6\xD0"}, {1252, "\xE9"}, {CP_UTF8, "\xE4\xB8\xAD"}};
  ASSERT_EQ(texts.count(::GetACP()), 1u) << ::GetACP();
  const char* const shown = ::GetACP() == 1252 ? "\xC3\xA9" : "\xE4\xB8\xAD";
  const std::string long_text(100000, 'x');
  CRvoFtp ftp;
  ftp.DeleteServerFile(texts.at(::GetACP()));
  ftp.RenameServerFile("", long_text.c_str());
  ftp.DeleteServerPath("a\x81");  // no text at all
  EXPECT_THAT(script_.calls, ElementsAre(std::string("DeleteServerFile ") + shown,
                                         "RenameServerFile ," + long_text,
                                         testing::StartsWith("DeleteServerPath a")));
}

TEST_F(Com, SaysAboutFailuresWhatTheComponentSays) {
  const auto failure = [&](bool silent) {
    script_.silent = silent;
    script_.hresults["FtpLogout"] = E_ACCESSDENIED;
    CRvoFtp ftp;
    try {
      ftp.FtpLogout();
    } catch (const _com_error& error) {
      EXPECT_EQ(error.Error(), E_ACCESSDENIED);
      return std::wstring(error.Description().length() > 0 ? error.Description().GetBSTR() : L"");
    }
    return std::wstring(L"no exception");
  };
  EXPECT_EQ(failure(false), L"FtpLogout");
  EXPECT_EQ(failure(true), L"");  // although there is something on the thread
  EXPECT_EQ(script_.alive, 0);
}

TEST_F(Com, EndsTheFtpComponentInsideItsApartment) {
  { CRvoFtp().FtpLogout(); }
  EXPECT_EQ(Released(), "inside");
}

// Moves the component away, so that no file beside the program can be loaded.
int LiveWithoutComponents() {
  { const CRvoFtp entered; }
  APTTYPE type{};
  APTTYPEQUALIFIER qualifier{};
  const bool stays = SUCCEEDED(::CoGetApartmentType(&type, &qualifier));
  const fs::path file = Beside("QvCoFtp.dll");
  const fs::path away = Beside("Away.dll");
  fs::rename(file, away);
  CRvoFtp ftp;
  const long first = ftp.FtpLogout();
  fs::rename(away, file);
  const long second = ftp.FtpLogout();
  CRvoCloudStorage cloud;
  Register(Beside("QvCoCSC.dll"));
  const bool as_it_should = stays && first == -100 && second == 0 && cloud.FtpLogout() == -100 &&
                            CRvoCloudStorage().FtpLogout() == 0;
  return as_it_should ? 0 : 1;
}

TEST_F(ComDeathTest, ComponentsThatAreNotThere) {
  { const ScriptedLibrary ftp("QvCoFtp"), cloud("QvCoCSC"); }  // leave nothing registered
  EXPECT_EXIT(std::exit(LiveWithoutComponents()), testing::ExitedWithCode(0), "");
  { const ScriptedLibrary ftp("QvCoFtp"), cloud("QvCoCSC"); }
}

// COM's own reference to the file is released before, because not every system releases it when the
// last apartment is left.
int EndTheCloudComponent() {
  {
    const CRvoCloudStorage cloud;
    ::FreeLibrary(::GetModuleHandleA("QvCoCSC.dll"));
  }
  return Released() == "outside" && ::GetModuleHandleA("QvCoCSC.dll") == nullptr ? 0 : 1;
}

TEST_F(ComDeathTest, TheCloudComponentEndsOutsideItsApartment) {
  Register(Beside("QvCoCSC.dll"));
  EXPECT_EXIT(std::exit(EndTheCloudComponent()), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace qv::test
