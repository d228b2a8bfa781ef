// The files that the library opens while it reads one: those that NamedFiles finds, and only for reading.
#pragma once
#include <assimp/IOSystem.hpp>

#include "NamedFiles.h"

class LibraryFiles : public Assimp::IOSystem {
public:
    /// @param files  copied
    explicit LibraryFiles(const NamedFiles& files) : m_files(files) {}

    [[nodiscard]] bool Exists(const char* name) const override;
    [[nodiscard]] char getOsSeparator() const override { return '/'; }
    /// Null for a file that does not exist, and for any mode but reading.
    Assimp::IOStream* Open(const char* name, const char* mode) override;
    void Close(Assimp::IOStream* stream) override;

private:
    NamedFiles m_files;
};
