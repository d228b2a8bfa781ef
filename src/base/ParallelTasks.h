// Tasks for all cores of the machine. The implementation is libs/files/ParallelTasks.cpp, which the libraries use too.
#pragma once
#include "files/ParallelTasks.h"

/// Threads that can run at the same time, this one included.
using FileStorage::AllowedCores;
/// `RunTasks(parts, threads, [&](std::size_t part) { ... });` returns when all parts have ended.
using FileStorage::RunParallelTasks;
using FileStorage::RunTasks;
using FileStorage::ThreadsFor;
