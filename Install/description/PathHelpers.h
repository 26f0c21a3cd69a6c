#pragma once
#include <windows.h>

// Path and file helpers shared by the whole program. Paths live in buffers of
// MAX_PATH bytes unless a capacity is given; every copy is cut to the buffer.

// `folder`, a backslash unless it ends in one, then `name` (if not null).
char* joinPath(const char* folder, const char* name, char* out, size_t capacity);
// The length that joinPath gives the two when nothing is cut.
size_t joinedLength(const char* folder, const char* name);
// The join of the two exists (a folder counts); `folder` alone when `name` is null.
bool fileExists(const char* folder, const char* name);
// `path` names an existing folder. A trailing backslash finds nothing.
bool folderExists(const char* path);
// Makes every folder along `path`; true if the whole path then stands as a folder.
bool createFolderPath(const char* path);
// What a walk of folders (a clean-up, a search, the Favorites) does with an
// entry it lists, by the entry's attributes. A reparse point (junction, mount
// point, link to a folder or a file) leads wherever it points, C:\ or another
// user's files: no walk enters or follows one.
enum class WalkEntry { file, folder, link };
WalkEntry walkEntryOf(DWORD attributes);
// Deletes `path` with all it holds, except names that begin with a point (and
// so the folders that hold them). A link in the tree, or `path` itself when it
// is one, is removed as the link; what it leads to is left alone. True if
// `path` itself went.
bool removeTree(const char* path);
// A name that stays inside any folder it is joined to: not empty, no drive, not
// rooted, no step up (".." anywhere). Cabinet members and the files of the
// setup description must be such names.
bool isPlainMemberName(const char* name);
// Size in bytes, 0 if the file cannot be opened.
DWORD fileSizeOf(const char* path);
// Removes white space from both ends, in place.
char* trimSpaces(char* text);

#include <string>
// GetShortPathNameA of `path`; empty when the path does not exist.
std::string shortPathOf(const char* path);
// `path` as the program of a command line that Windows starts as it stands
// (WinExec, a RunOnce value): it finds the program by trying the text up to
// each blank in turn, so "C:\Program Files\..." unquoted would start
// "C:\Program.exe". In quotes when it holds a blank and has none of its own.
std::string quotedProgram(const char* path);
// `commandLine` with its program, when named bare ("rundll32 advpack.dll,..."),
// as found in the system folder or else the Windows folder: started from
// SETUP.EXE as it stands, Windows would look in SETUP.EXE's own folder first,
// the download folder. A line whose program has a path, or is in neither
// folder, as it is.
std::string commandFromSystemFolder(const char* commandLine);
// What follows the last backslash of `path`; the whole text without one.
std::string fileNameOf(const std::string& path);
