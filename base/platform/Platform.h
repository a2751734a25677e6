// Everything that differs between operating systems, behind one interface. All functions may be
// called from any thread.
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

// The separator between the folders of a local path.
extern const char kSeparator;

// Returns the length of the folder part of a local path, including the separator at its end, or 0
// if the path has no folder. A byte that is half of a character is not a separator; on Windows,
// both slashes are.
[[nodiscard]] std::size_t FolderLength(std::string_view path);
[[nodiscard]] std::string FolderOf(const std::string& path);

// Returns `folder` with kSeparator at its end, added if necessary.
[[nodiscard]] std::string WithSeparator(std::string folder);

// Returns the system's folder for temporary files, with a separator at its end: an absolute path of
// at most 259 bytes.
[[nodiscard]] std::string TempFolder();

// Returns the absolute path of the file that contains this code, a library or the program, as it
// was named when it was loaded; links are kept.
[[nodiscard]] std::string ModuleFile();

// Returns the folder of the running program, with a separator at its end and links resolved, or an
// empty text if the system does not know it.
[[nodiscard]] std::string ProgramFolder();

// Loads a library and its dependencies without exporting their functions to others. Returns null on
// failure. Balance every successful OpenLibrary with CloseLibrary; the last one unloads the
// library, so nothing from it may still be in use.
[[nodiscard]] void* OpenLibrary(const std::string& path);
void CloseLibrary(void* library);
// Returns a function with C linkage of a loaded library, or null.
[[nodiscard]] void* FindFunction(void* library, const char* name);

// Returns a function with C linkage of the library or program that `neighbour`, a function of that
// one, comes from, or null. `library` is the name of the library without prefix and extension, for
// systems on which the address of an imported function does not tell.
[[nodiscard]] void* FindFunctionBeside(const char* library, void* neighbour, const char* name);

// Returns the value of `key` in `section` of the INI file at `path`. Names ignore case, and the
// first of several entries counts. White space and one pair of quotes around the value are removed.
// Returns nothing if the file, the section or the key is missing; an empty value is an empty text.
[[nodiscard]] std::optional<std::string> ReadIniValue(const std::string& path, const char* section,
                                                      const char* key);

// Fills `count` bytes, at most 256, with bytes of the system's random source, which nobody can
// predict. Throws std::exception if there is no such source.
void FillWithRandomBytes(void* bytes, std::size_t count);

// Returns a new random identifier in registry form: braces, upper-case digits, 38 characters.
[[nodiscard]] std::string NewGuid();
inline constexpr std::size_t kGuidLength = 38;
// Returns whether all of `text` is an identifier in that form.
[[nodiscard]] bool IsGuid(std::string_view text);

enum class Create {
  kAlways,  // an existing file is emptied and taken from everybody else
  kNew,     // an existing file is an error
};

// Returns whether this program could create a file of so many bytes in `folder`, as far as the
// system tells without trying.
[[nodiscard]] bool MayCreateFile(const std::string& folder, std::uint64_t bytes);

// Opens a file for writing that only its owner can read. The caller closes it. Returns null and
// sets errno if the file cannot be opened or `path` names something other than a file.
[[nodiscard]] std::FILE* CreatePrivateFile(const std::string& path, Create how);

enum class Opening {
  kRead,
  kChange,          // reads as well, as do the others
  kChangeOrCreate,  // what is there keeps its content
  kCreate,          // what is there is emptied
};

// Opens a file that others may read, change, remove and rename meanwhile. Programs that are started
// from this one do not inherit it, and links are followed. The caller closes it. Returns null and
// sets errno on failure.
[[nodiscard]] std::FILE* OpenFile(const std::string& path, Opening how);
// OpenDescriptor does the same for reading and returns a descriptor of the C library, for functions
// that take one over, or -1 with errno. CloseDescriptor closes a descriptor that no function took
// over.
[[nodiscard]] int OpenDescriptor(const std::string& path);
void CloseDescriptor(int descriptor);

// Reads `count` bytes of an open file from `offset` on, whatever others read. Returns how many were
// read, which is fewer only at the end of the file, or nothing after an error.
[[nodiscard]] std::optional<std::size_t> ReadAt(int descriptor, std::uint64_t offset, char* to,
                                                std::size_t count);

// Returns true if an open file is a regular file that only its owner can read or change.
[[nodiscard]] bool IsPrivate(std::FILE* file);

// Creates a folder, and those above it, that only its owner can enter. Returns true if the folder
// exists afterwards.
[[nodiscard]] bool CreatePrivateFolder(const std::string& path);

// Removes a file. Returns false if it does not exist or cannot be removed.
bool RemoveFile(const std::string& path);

// Renames a file within its file system. An existing file of the new name is replaced atomically.
[[nodiscard]] bool ReplaceByRename(const std::string& from, const std::string& to);

// Flushes everything that was written to `file` to the disk.
[[nodiscard]] bool FlushToDisk(std::FILE* file);

// Makes writes beyond the process's file size limit fail from now on, instead of ending the
// process.
void SurviveFileLimits();

// Makes writes to a pipe that nobody reads any more fail from now on, instead of ending the
// process.
void SurviveClosedPipes();

// Returns false if a line of up to 4096 bytes that is written to standard error now could have to
// wait, because nobody empties the pipe or the terminal that it leads to.
[[nodiscard]] bool StandardErrorHasRoom();

// Asks for large pages for `bytes` of untouched memory at `start`. This only affects speed.
void PreferLargePages(void* start, std::size_t bytes);

// Returns `bytes` of zeros in whole pages from the system, which cost nothing until they are
// touched, or null without memory. Give them back with FreePages.
[[nodiscard]] void* AllocatePages(std::size_t bytes);
void FreePages(void* start, std::size_t bytes);
// Makes whole pages of AllocatePages zero again by giving the memory behind them back to the
// system. Returns false if the system does not do so; nothing but FreePages may be done with them
// then.
[[nodiscard]] bool ZeroPages(void* start, std::size_t bytes);

// Returns the number of this process; a child that was forked has another.
[[nodiscard]] unsigned long ProcessNumber();

// Makes the system keep the library that contains this code until the process ends, whoever unloads
// it: for code that runs on threads of the library's own.
void KeepThisModule();

// Returns the bytes of memory that the machine has, or 0 if the system does not say.
[[nodiscard]] std::uint64_t PhysicalMemory();

// Converts text in the platform's narrow code page (UTF-8 off Windows) to UTF-16, independently of
// the locale. Returns nothing if the text is not valid in that code page.
[[nodiscard]] std::optional<std::u16string> WideFromNarrow(std::string_view text);

// Converts UTF-16 to the platform's narrow code page. An unpaired surrogate, or a character that
// the code page lacks, becomes the replacement character. AppendNarrow appends to `text`, to reuse
// its memory.
[[nodiscard]] std::string NarrowFromWide(std::u16string_view wide);
void AppendNarrow(std::u16string_view wide, std::string& text);

// Returns `path` as an absolute path, so that a later change of the working directory does not
// matter; links are resolved where the system has them in paths. Returns nothing if the system
// cannot do so.
[[nodiscard]] std::optional<std::string> AbsolutePath(const std::string& path);

// Returns true if the folder is on a disk of this machine, as far as the system says; false for one
// of a network, and for a kind of file system that is not known here.
[[nodiscard]] bool IsLocalFolder(const std::string& path);

// Returns the type of what `path` names; a link is not followed.
[[nodiscard]] std::filesystem::file_type TypeOf(const std::string& path);

// Converts a path between the narrow code page and the type that the standard library uses.
[[nodiscard]] std::filesystem::path PathFromNarrow(const std::string& path);
[[nodiscard]] std::string NarrowFromPath(const std::filesystem::path& path);

// Seconds since 1970.
[[nodiscard]] inline std::int64_t UnixTime() { return std::time(nullptr); }

// Returns `time` in the time zone that is set at the moment of the call, or nothing if the system
// cannot convert it. Leaves the result that std::localtime shares between all threads alone.
[[nodiscard]] std::optional<std::tm> LocalTime(std::time_t time);

}  // namespace qv::platform
