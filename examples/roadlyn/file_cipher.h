#pragma once

#include <string>

namespace roadlyn {

enum class Direction { Encrypt, Decrypt };

struct CipherJob {
    Direction direction;
    std::string source;
    std::string target;
    std::string keyFile;     ///< Empty: the library's default key.
    bool overwrite = false;  ///< The target may be there already.
};

/// Writes the encrypted or decrypted content of `source` to `target` in one step and returns its size. Throws
/// InputError when it cannot; `target` is unchanged then. A wrong key cannot be told from damage, nor always be
/// noticed: the format has no checksum, and one wrong key of eight gives a believable length.
std::size_t RunCipher(const CipherJob& job);

/// The key in a file: its bytes, one line end at the end not counted. Throws InputError unless there are 16, 24 or 32.
std::string ReadKey(const std::string& path);

}  // namespace roadlyn
