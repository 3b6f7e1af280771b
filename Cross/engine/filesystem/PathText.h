#pragma once

// Path text: taking paths apart and joining them. Nothing here touches a file.
//
// A path is "alias:directory/name.extension". The alias is the run of characters before the first ':', when
// no slash stands in front of it. The extension begins at the last '.' of the last component, unless that is
// the component's first character. Both kinds of slash separate components. Buffers hold 260 characters; a
// result that does not fit gives false and an empty text. Null texts count as "". Any thread.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/Types.h"

namespace fs {

// Joins the parts with the separators they lack; empty parts are left out, an extension may have its leading
// point or not. An alias alone gives its root, "DATA:".
CROSS_ENGINE_API bool MakePath(char (&path)[c_maxPath], char const * alias, char const * directory,
                               char const * name, char const * extension);

// The four parts, each into a buffer of 260 characters or null when not wanted. Joined end to end they give
// the path: the alias keeps its ':', the directory its last slash, the extension its point.
CROSS_ENGINE_API bool SplitPath(char const * path, char * alias, char * directory, char * name,
                                char * extension);

CROSS_ENGINE_API bool HasAlias(char const * path);

// The alias without its ':' and the extension without its point. False, and an empty text, when the path has
// none.
CROSS_ENGINE_API bool RetrieveAlias(char const * path, char (&alias)[c_maxPath]);
CROSS_ENGINE_API bool RetrieveExtension(char const * path, char (&extension)[c_maxPath]);

// Replace or add the alias or the extension in place; an empty one takes it away. False, with the path
// unchanged, when the result does not fit.
CROSS_ENGINE_API bool SetAlias(char (&path)[c_maxPath], char const * alias);
CROSS_ENGINE_API bool SetExtension(char (&path)[c_maxPath], char const * extension);

// Rewrites a name in place into its canonical slashes: '/' becomes '\', and a run of slashes becomes one.
// Null is ignored.
CROSS_ENGINE_API void BracketConvert(char * path);

} // namespace fs
