#pragma once

/// Security and integrity: SHA-1 and HMAC-SHA1, hexadecimal text, encryption, integrity hashes of files, checksums.
/// They protect against damage and casual reading, not against an attacker.
#include "dorvutil/security/checksum.h"
#include "dorvutil/security/encryption.h"
#include "dorvutil/security/file_hash.h"
#include "dorvutil/security/hex_text.h"
#include "dorvutil/security/hmac.h"
#include "dorvutil/security/sha1.h"
