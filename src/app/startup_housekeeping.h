#pragma once
// What start-up puts right in the home before the program runs: settings
// kept under keys that have moved, and files that a cut-off run left behind.
#include "core/context/app_context.h"

namespace vonel {

// A store root still in the general settings moves to the paths file; the
// other folder keys there are dropped and fall back to their defaults.
void moveStoreRootToPathsFile(AppContext& context);

// Without Sigs/Sig1.txt, the SIGNATURE key becomes that file (even when
// empty), each \x01 in it a line end.
void moveSignatureToFile(AppContext& context);

// A download cut off by a cancel or a dropped connection leaves its
// temporary file in the store root; it never became a message. A source
// shown in a viewer was left there for the viewer, until now.
void removeUnfinishedDownloads(const AppContext& context);

}  // namespace vonel
