// Replaces a file as a whole or not at all. The implementation is libs/files/AtomicFile.cpp, which the libraries use
// too.
#pragma once
#include "files/AtomicFile.h"

/// `AtomicFile file(path); file.WriteAt(0, bytes, size); file.Commit();`: until the Commit() the old file is unchanged.
using FileStorage::AtomicFile;
