#pragma once
#include <cstddef>
#include <string>

class CInternetSession;

// The user's Favorites, sent to the import server in one POST. The body is
// bytes, not a form: the passport cookie as the first line when the store has
// one, then per Internet shortcut its path from the Favorites root without
// ".url", the byte 0xFF and its URL, each line ended by CR LF.

// Reads the Favorites and posts them to `url` on `session`. A server's text in
// the reply is shown in the error list; whatever came of it, the caller goes on.
int importFavorites(CInternetSession& session, const char* url);

// The Favorites folder, or an empty text when the shell has none.
void favoritesFolder(char* path, size_t size);

// Appends the lines of `folder` and of every folder below it; `relative` is
// the path of `folder` from the Favorites root ("\" for the root itself).
// Shortcuts of a folder come before its subfolders, each in the system's order.
void walkFavorites(const char* folder, const char* relative, std::string& body);

// Appends the line of one shortcut; `relative` still ends in its extension.
void addShortcut(const char* file, const char* relative, std::string& body);
