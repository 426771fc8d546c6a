// The format validators against each other and against what every accepted text has.
#include "dorvutil/system/validators.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

bool Consists(std::string_view text, std::string_view of) {
    return text.find_first_not_of(of) == std::string_view::npos;
}

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
constexpr std::string_view kLabelUnits = "0123456789-abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

ORVustring Text(std::string_view text) { return ORVustring(text.data(), static_cast<std::int32_t>(text.size())); }

void CheckHostname(std::string_view text) {
    FUZZ_CHECK(text.size() <= 255 && text.find('.') != std::string_view::npos);
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find('.');
        const std::string_view label = text.substr(0, end);
        FUZZ_CHECK(!label.empty() && label.size() <= 63 && Consists(label, kLabelUnits));
        FUZZ_CHECK(label.front() != '-' && label.back() != '-');
        if (end != std::string_view::npos) text.remove_prefix(end + 1);
    }
}

void CheckIpv4(std::string_view text) {
    FUZZ_CHECK(std::count(text.begin(), text.end(), '.') == 3 && text.size() >= 7 && text.size() <= 15);
    for (int i = 0; i < 4; ++i) {
        const std::string part(text.substr(0, text.find('.')));
        FUZZ_CHECK(!part.empty() && part.size() <= 3 && Consists(part, kDigits) && std::atoi(part.c_str()) <= 255);
        text.remove_prefix(std::min(part.size() + 1, text.size()));
    }
}

void CheckIpv6(std::string_view text) {
    FUZZ_CHECK(text.size() <= 39 && std::count(text.begin(), text.end(), ':') <= 8);
    FUZZ_CHECK(text.find(":::") == std::string_view::npos && text.find("::") == text.rfind("::"));
    const std::string_view tail = text.substr(text.rfind(':') + 1);
    if (tail.find('.') != std::string_view::npos) {
        CheckIpv4(tail);
        text.remove_suffix(tail.size());
    }
    FUZZ_CHECK(Consists(text, std::string(kHexDigits) + ":"));
}

void CheckIpAddress(std::string_view text) {
    if (text.find(':') == std::string_view::npos)
        CheckIpv4(text);
    else
        CheckIpv6(text);
}

void CheckEmail(std::string_view text) {
    const std::size_t at = text.rfind('@');
    FUZZ_CHECK(at != std::string_view::npos && text.size() <= 320);
    FUZZ_CHECK(Verify_EmailLocalPartFormat(Text(text.substr(0, at))));
    const std::string_view domain = text.substr(at + 1);
    const bool bracketed = domain.size() > 2 && domain.front() == '[' && domain.back() == ']';
    FUZZ_CHECK(bracketed ? Verify_IPAddressFormat(Text(domain.substr(1, domain.size() - 2)))
                         : Verify_HostnameFormat(Text(domain)));
}

void Check(std::string_view view) {
    const ORVustring text = Text(view);
    FUZZ_CHECK(std::string_view(text.c_str(), text.length()) == view);
    if (Verify_EmailFormat(text)) CheckEmail(view);
    if (Verify_HostnameFormat(text)) CheckHostname(view);
    if (Verify_IPAddressFormat(text)) CheckIpAddress(view);
    if (Verify_PhoneNumFormat(text)) FUZZ_CHECK(!view.empty() && Consists(view, "0123456789 +-()xX"));
    if (Verify_EmailLocalPartFormat(text)) {
        FUZZ_CHECK(!view.empty() && view.size() <= 64 && view.front() != '.' && view.back() != '.');
        FUZZ_CHECK(std::count(view.begin(), view.end(), '"') % 2 == 0 && view.find("..") == std::string_view::npos);
        // A good local part and a good host make an address.
        FUZZ_CHECK(Verify_EmailFormat(Text(std::string(view) + "@a.example")));
        FUZZ_CHECK(Verify_EmailFormat(Text(std::string(view) + "@[127.0.0.1]")));
    }
}

}  // namespace

void TestInput(Input& input) { Check(UpToZero(input.Rest(1024))); }

}  // namespace dorvutil::fuzz
