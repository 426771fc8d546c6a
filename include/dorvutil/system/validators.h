#pragma once

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

/// Whether a text has the form of what a user was asked for. Only the text is looked at: nothing is resolved and nobody
/// contacted. Lengths are bytes; letters and digits are those of ASCII, so that international names do not pass. An
/// empty text is valid for none. Any thread.
namespace dorvutil {

extern "C" {

/// An e-mail address of at most 320 bytes: a local part, the last '@', and either a host name or an IP address in
/// square brackets.
DORVUTIL_API bool Verify_EmailFormat(const ORVustring& text);

/// What stands before that '@', at most 64 bytes. It neither starts nor ends with '.', and nowhere has two of them in a
/// row. Double quotes come in pairs; outside of them there is no blank and none of , \ @ ( ) [ ] < > : ;
DORVUTIL_API bool Verify_EmailLocalPartFormat(const ORVustring& text);

/// A host name of at most 255 bytes: two labels or more with '.' between them, each of 1 to 63 letters, digits and
/// hyphens, a hyphen neither first nor last.
DORVUTIL_API bool Verify_HostnameFormat(const ORVustring& text);

/// An IPv4 address (four decimal numbers up to 255, of at most three digits, leading zeros allowed) or an IPv6 address
/// of at most 39 bytes: at most eight groups of one to four hexadecimal digits with ':' between them. One "::" may
/// stand for a group, also at either end, and an IPv4 address for the last one. Fewer than eight groups need no "::".
DORVUTIL_API bool Verify_IPAddressFormat(const ORVustring& text);

/// Digits, blanks, '+', '-', parentheses, 'x' and 'X', in any order.
DORVUTIL_API bool Verify_PhoneNumFormat(const ORVustring& text);

}  // extern "C"

}  // namespace dorvutil
