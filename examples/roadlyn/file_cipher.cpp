#include "file_cipher.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>

#include "dorvutil/memory/heap.h"
#include "dorvutil/security.h"
#include "input_error.h"
#include "input_file.h"
#include "replace_file.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

struct HeapDeleter {
    void operator()(std::uint8_t* block) const { dorvutil::Mem_Free(block); }
};

// What only the command line's user gives away: the library's own key needs no length.
struct Key {
    const std::uint8_t* bytes;
    std::uint32_t length;
};

Key KeyOf(const std::string& text) {
    if (text.empty()) return {nullptr, 0};
    return {reinterpret_cast<const std::uint8_t*>(text.data()), static_cast<std::uint32_t>(text.size())};
}

void CheckCipherText(const std::string& path) {
    const std::uint32_t size = SizeOfInput(path);
    if (size % dorvutil::kCipherBlockBytes == 0) return;
    throw InputError(
        path, 0, "is no encrypted file, or is cut off: " + std::to_string(size) + " bytes are not whole blocks of 32");
}

// The count of bytes in the last block is the only thing a wrong key can be noticed by.
bool IsBelievable(std::uint32_t plain, std::uint32_t cipher) { return plain < cipher; }

}  // namespace

std::string ReadKey(const std::string& path) {
    SizeOfInput(path);
    std::string key = ReadWholeFile(path);
    if (key.ends_with("\r\n"))
        key.resize(key.size() - 2);
    else if (key.ends_with('\n'))
        key.pop_back();
    if (key.size() == 16 || key.size() == 24 || key.size() == 32) return key;
    throw InputError(path, 0, "a key has 16, 24 or 32 bytes, not " + std::to_string(key.size()));
}

std::size_t RunCipher(const CipherJob& job) {
    NeedContent(job.source);
    if (!job.overwrite && std::filesystem::exists(std::filesystem::symlink_status(job.target))) {
        throw InputError(job.target, 0, "exists already; --force replaces it");
    }
    const bool decrypt = job.direction == Direction::Decrypt;
    if (decrypt) CheckCipherText(job.source);
    const std::string keyText = job.keyFile.empty() ? std::string() : ReadKey(job.keyFile);
    const Key key = KeyOf(keyText);
    std::uint8_t* out = nullptr;
    std::uint32_t length = 0;
    const bool done = (decrypt ? dorvutil::FileDecrypt : dorvutil::FileEncrypt)(LibraryPath(job.source), &out, &length,
                                                                                key.bytes, key.length);
    const std::unique_ptr<std::uint8_t, HeapDeleter> held(out);
    if (decrypt && (!done || !IsBelievable(length, SizeOfInput(job.source)))) {
        throw InputError(job.source, 0, "wrong key, or damaged: the format does not tell which");
    }
    if (!done) throw InputError(job.source, 0, "cannot be read");
    const std::string_view content(reinterpret_cast<const char*>(out), length);
    if (job.overwrite)
        ReplaceFile(job.target, content);
    else
        CreateWholeFile(job.target, content);
    return length;
}

}  // namespace roadlyn
