// Hashes and encryption beside OpenSSL, libmcrypt and sha1sum.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "dorvutil/memory/heap.h"
#include "dorvutil/security.h"

#ifdef BENCH_OPENSSL
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/sha.h>
#endif
#ifdef BENCH_MCRYPT
#include <mcrypt.h>
#endif

namespace {

constexpr std::size_t kFileBytes = std::size_t{256} << 20;
constexpr std::uint32_t kKeyBytes = 32;

using Bytes = std::vector<std::uint8_t>;

Bytes Noise(std::size_t n) {
    Bytes bytes(n);
    std::uint32_t random = 1;
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>((random = random * 1664525u + 1013904223u) >> 24);
    return bytes;
}

const Bytes& Key() {
    static const Bytes key = Noise(kKeyBytes);
    return key;
}

Bytes DataOf(const benchmark::State& state) { return Noise(static_cast<std::size_t>(state.range(0))); }

void HashDorvutil(benchmark::State& state) {
    const Bytes data = DataOf(state);
    std::uint8_t digest[dorvutil::kSha1DigestBytes];
    for (auto _ : state) {
        dorvutil::SHA1Context context;
        dorvutil::SHA1Init(&context);
        dorvutil::SHA1Update(&context, data.data(), static_cast<std::uint32_t>(data.size()));
        dorvutil::SHA1Final(&context, digest);
        benchmark::DoNotOptimize(digest);
    }
}

// A short message under a short key.
const char* const kMacKey = "a key of 24 characters..";
const char* const kMessage = "$GPRMC,150553.000,A,5347.5536,N,00143.6468,W,0.00,241.59,14";

void MacDorvutil(benchmark::State& state) {
    for (auto _ : state) {
        std::uint8_t* const code = dorvutil::HMAC_SHA1(kMacKey, kMessage);
        benchmark::DoNotOptimize(code);
        dorvutil::Mem_Free(code);
    }
}

template <auto kFunction>
void CipherDorvutil(benchmark::State& state) {
    const Bytes data = DataOf(state);
    bool good = true;
    for (auto _ : state) {
        std::uint8_t* out = nullptr;
        std::uint32_t length = 0;
        const auto size = static_cast<std::uint32_t>(data.size());
        // Noise decrypts to noise, whose length is refused or not: the work is the same.
        good =
            kFunction(data.data(), size, &out, &length, Key().data(), kKeyBytes) || kFunction != dorvutil::EncryptData;
        benchmark::DoNotOptimize(out);
        dorvutil::Mem_Free(out);
    }
    if (!good) state.SkipWithError("not encrypted");
}

// 256 MB, removed at the end of the process.
class ScratchFile {
public:
    ScratchFile() {
        const char* const folder = std::getenv("TMPDIR");
        m_path = std::string(folder ? folder : "/tmp") + "/dorvutil_bench_" + std::to_string(getpid()) + ".hash";
        const Bytes block = Noise(1 << 20);
        std::FILE* const out = std::fopen(m_path.c_str(), "wb");
        for (std::size_t size = 0; size < kFileBytes; size += block.size()) {
            std::fwrite(block.data(), 1, block.size(), out);
        }
        std::fclose(out);
    }
    ~ScratchFile() {
        std::remove(m_path.c_str());
        std::remove((m_path + ".sum").c_str());
    }
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

const std::string& BigFile() {
    static const ScratchFile file;
    return file.Path();
}

void FileDorvutil(benchmark::State& state) {
    const dorvutil::ORVustring path(BigFile().c_str());
    bool good = true;
    for (auto _ : state) {
        std::uint8_t digest[dorvutil::kSha1DigestBytes];
        good = dorvutil::FileWriteHash(path, dorvutil::kHashText, digest, sizeof digest, nullptr, 0) &&
               dorvutil::FileVerifyHash(path, dorvutil::kHashText, nullptr, 0) &&
               truncate(BigFile().c_str(), static_cast<off_t>(kFileBytes)) == 0 && good;
    }
    if (!good) state.SkipWithError("does not verify");
}

void FileSha1sum(benchmark::State& state) {
    const std::string sum = BigFile() + ".sum";
    const std::string command = "sha1sum " + BigFile() + " >" + sum + " && sha1sum --status -c " + sum;
    bool good = true;
    for (auto _ : state) good = std::system(command.c_str()) == 0 && good;
    if (!good) state.SkipWithError("does not verify");
}

#ifdef BENCH_OPENSSL
void HashOpenSsl(benchmark::State& state) {
    const Bytes data = DataOf(state);
    std::uint8_t digest[SHA_DIGEST_LENGTH];
    for (auto _ : state) {
        SHA1(data.data(), data.size(), digest);
        benchmark::DoNotOptimize(digest);
    }
}

// The digest looked up and its context made beforehand.
void HashOpenSslContext(benchmark::State& state) {
    const Bytes data = DataOf(state);
    std::uint8_t digest[SHA_DIGEST_LENGTH];
    EVP_MD* const sha1 = EVP_MD_fetch(nullptr, "SHA1", nullptr);
    EVP_MD_CTX* const context = EVP_MD_CTX_new();
    for (auto _ : state) {
        EVP_DigestInit_ex(context, sha1, nullptr);
        EVP_DigestUpdate(context, data.data(), data.size());
        EVP_DigestFinal_ex(context, digest, nullptr);
        benchmark::DoNotOptimize(digest);
    }
    EVP_MD_CTX_free(context);
    EVP_MD_free(sha1);
}

void MacOpenSsl(benchmark::State& state) {
    std::uint8_t code[SHA_DIGEST_LENGTH];
    for (auto _ : state) {
        HMAC(EVP_sha1(), kMacKey, static_cast<int>(std::strlen(kMacKey)),
             reinterpret_cast<const std::uint8_t*>(kMessage), std::strlen(kMessage), code, nullptr);
        benchmark::DoNotOptimize(code);
    }
}
#endif

#ifdef BENCH_MCRYPT
template <auto kFunction>
void CipherMcrypt(benchmark::State& state) {
    Bytes data = DataOf(state);
    Bytes key = Key();
    Bytes vector = Noise(32);
    char algorithm[] = "rijndael-256";
    char mode[] = "cbc";
    const MCRYPT cipher = mcrypt_module_open(algorithm, nullptr, mode, nullptr);
    if (cipher == MCRYPT_FAILED) return state.SkipWithError("libmcrypt has no such cipher");
    for (auto _ : state) {
        mcrypt_generic_init(cipher, key.data(), static_cast<int>(key.size()), vector.data());
        kFunction(cipher, data.data(), static_cast<int>(data.size()));
        mcrypt_generic_deinit(cipher);
        benchmark::DoNotOptimize(data.data());
    }
    mcrypt_module_close(cipher);
}
#endif

BENCHMARK(HashDorvutil)->Name("SHA-1 of 64 bytes|dorvutil")->Arg(64);
#ifdef BENCH_OPENSSL
BENCHMARK(HashOpenSsl)->Name("SHA-1 of 64 bytes|OpenSSL SHA1")->Arg(64);
BENCHMARK(HashOpenSslContext)->Name("SHA-1 of 64 bytes|OpenSSL EVP, context kept")->Arg(64);
#endif
BENCHMARK(HashDorvutil)->Name("SHA-1 of 1 MB|dorvutil")->Arg(1 << 20);
#ifdef BENCH_OPENSSL
BENCHMARK(HashOpenSsl)->Name("SHA-1 of 1 MB|OpenSSL SHA1")->Arg(1 << 20);
#endif
BENCHMARK(MacDorvutil)->Name("HMAC-SHA1 of 60 bytes|dorvutil");
#ifdef BENCH_OPENSSL
BENCHMARK(MacOpenSsl)->Name("HMAC-SHA1 of 60 bytes|OpenSSL HMAC");
#endif
BENCHMARK(FileDorvutil)->Name("file of 256 MB: hash and verify|dorvutil")->Unit(benchmark::kMillisecond);
BENCHMARK(FileSha1sum)->Name("file of 256 MB: hash and verify|sha1sum")->Unit(benchmark::kMillisecond)->UseRealTime();

constexpr auto kEncrypt = dorvutil::EncryptData;
constexpr auto kDecrypt = dorvutil::DecryptData;
BENCHMARK(CipherDorvutil<kEncrypt>)->Name("encrypt 1 KB|dorvutil")->Arg(1 << 10);
BENCHMARK(CipherDorvutil<kEncrypt>)->Name("encrypt 1 MB|dorvutil")->Arg(1 << 20);
BENCHMARK(CipherDorvutil<kDecrypt>)->Name("decrypt 1 KB|dorvutil")->Arg(1 << 10);
BENCHMARK(CipherDorvutil<kDecrypt>)->Name("decrypt 1 MB|dorvutil")->Arg(1 << 20);
#ifdef BENCH_MCRYPT
BENCHMARK(CipherMcrypt<mcrypt_generic>)->Name("encrypt 1 KB|libmcrypt")->Arg(1 << 10);
BENCHMARK(CipherMcrypt<mcrypt_generic>)->Name("encrypt 1 MB|libmcrypt")->Arg(1 << 20);
BENCHMARK(CipherMcrypt<mdecrypt_generic>)->Name("decrypt 1 KB|libmcrypt")->Arg(1 << 10);
BENCHMARK(CipherMcrypt<mdecrypt_generic>)->Name("decrypt 1 MB|libmcrypt")->Arg(1 << 20);
#endif

}  // namespace
