// What differs between operating systems, behind one interface. Every function may be called from
// any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace qv::platform {

// What separates the folders of a local path.
extern const char kSeparator;

// How much of a local path is the folder, with the separator at its end; 0 when it names none. A
// byte that is half of a character separates nothing; on Windows either slash does.
[[nodiscard]] std::size_t FolderLength(std::string_view path);
[[nodiscard]] std::string FolderOf(const std::string& path);

// A folder with kSeparator at its end, which is added unless it is there.
[[nodiscard]] std::string WithSeparator(std::string folder);

// The system's folder for temporary files, with a separator at its end: an absolute path of at most
// 259 bytes.
[[nodiscard]] std::string TempFolder();

// The absolute path of the file that this code was loaded from, as it was named then, links and
// all: the library, or the program that it is linked into.
[[nodiscard]] std::string ModuleFile();

// The folder of the program that runs, with a separator at its end and without links; empty when
// the system does not tell.
[[nodiscard]] std::string ProgramFolder();

// Loads a library, and what it needs, without offering its functions to others; null when it
// cannot. Every call that gave one is taken back by one to CloseLibrary, and the last of these
// unloads the library: nothing of it may be in use then.
[[nodiscard]] void* OpenLibrary(const std::string& path);
void CloseLibrary(void* library);
// A function with C linkage of a loaded library, or null.
[[nodiscard]] void* FindFunction(void* library, const char* name);

// The text behind `key` in `section` of the INI file at `path`; names ignore case, and of several
// entries the first counts. The value stands as it is in its line, but for white space and one pair
// of quotes around it. Nothing when the file, the section or the key is missing; an empty value is
// an empty text.
[[nodiscard]] std::optional<std::string> ReadIniValue(const std::string& path, const char* section,
                                                      const char* key);

// A new random identifier in registry form: braces, upper-case digits, 38 characters.
[[nodiscard]] std::string NewGuid();

enum class Create {
  kAlways,  // an existing file is emptied and taken from everybody else
  kNew,     // an existing file is an error
};

// Opens a file for writing that only its owner can read. The caller closes it. Null, and errno,
// when it cannot be had, or something that is no file stands in its place.
[[nodiscard]] std::FILE* CreatePrivateFile(const std::string& path, Create how);

enum class Opening {
  kRead,
  kChange,          // reads as well, as do the others
  kChangeOrCreate,  // what is there keeps its content
  kCreate,          // what is there is emptied
};

// Opens a file that everybody else may read, change, remove and rename meanwhile, and that programs
// started from here do not inherit; links are followed. The caller closes it. Null, and errno, when
// it cannot be had.
[[nodiscard]] std::FILE* OpenFile(const std::string& path, Opening how);
// The same for reading as a descriptor of the C library, for what takes one over, and the end of
// one that nobody took; -1, and errno, when it cannot be had.
[[nodiscard]] int OpenDescriptor(const std::string& path);
void CloseDescriptor(int descriptor);

// Whether an open file is an ordinary one that nobody but its owner can read or change.
[[nodiscard]] bool IsPrivate(std::FILE* file);

// Makes a folder, and those above it, that only its owner can enter. True when it is there
// afterwards.
[[nodiscard]] bool CreatePrivateFolder(const std::string& path);

// Removes a file; false when it was not there or will not go.
bool RemoveFile(const std::string& path);

// Gives a file another name in the same file system, replacing a file of that name in one step.
[[nodiscard]] bool ReplaceByRename(const std::string& from, const std::string& to);

// Sees to it that what was written to `file` is on the disk.
[[nodiscard]] bool FlushToDisk(std::FILE* file);
// The same for a file that is closed; a link is none.
[[nodiscard]] bool FlushFileToDisk(const std::string& path);

// From now on, writing to a file that may not grow further fails and does not end the process.
void SurviveFileLimits();

// Asks for large pages under `bytes` of memory at `start` that were not touched yet. Only speed
// depends on it.
void PreferLargePages(void* start, std::size_t bytes);

// Text in the platform's narrow code page (UTF-8 off Windows) as UTF-16, whatever the locale.
// Nothing when it is no such text.
[[nodiscard]] std::optional<std::u16string> WideFromNarrow(std::string_view text);

// UTF-16 in the platform's narrow code page; half of a character, and what the code page lacks,
// becomes its replacement character. AppendNarrow adds to `text`, to reuse its memory.
[[nodiscard]] std::string NarrowFromWide(std::u16string_view wide);
void AppendNarrow(std::u16string_view wide, std::string& text);

// The same place as an absolute path, whatever the working directory will be; without links where
// paths may have some. Nothing when the system does not tell.
[[nodiscard]] std::optional<std::string> AbsolutePath(const std::string& path);

// What stands at a path, a link for itself, wherever it leads.
[[nodiscard]] std::filesystem::file_type TypeOf(const std::string& path);

// A path of the narrow code page as the standard library takes it for work on files, and back.
[[nodiscard]] std::filesystem::path PathFromNarrow(const std::string& path);
[[nodiscard]] std::string NarrowFromPath(const std::filesystem::path& path);

// Seconds since 1970.
[[nodiscard]] inline std::int64_t UnixTime() { return std::time(nullptr); }

// Returns `time` in the time zone that is set at the moment of the call, or nothing if the system
// cannot convert it. Leaves the result that std::localtime shares between all threads alone.
[[nodiscard]] std::optional<std::tm> LocalTime(std::time_t time);

}  // namespace qv::platform
