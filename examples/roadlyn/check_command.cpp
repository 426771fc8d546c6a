#include "check_command.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "dorvutil/system/validators.h"
#include "search_report.h"

namespace roadlyn {
namespace {

using Verify = bool (*)(const dorvutil::ORVustring&);

constexpr struct Form {
    const char* name;
    Verify verify;
} kForms[] = {
    {"email", dorvutil::Verify_EmailFormat},
    {"host", dorvutil::Verify_HostnameFormat},
    {"ip", dorvutil::Verify_IPAddressFormat},
    {"phone", dorvutil::Verify_PhoneNumFormat},
};

struct CheckOptions {
    std::string form;
    std::vector<std::string> texts;
    bool tsv = false;
};

Verify FindForm(const std::string& name) {
    for (const Form& form : kForms) {
        if (name == form.name) return form.verify;
    }
    return nullptr;
}

int Run(const CheckOptions& options) {
    const Verify verify = FindForm(options.form);
    if (verify == nullptr) {
        std::cerr << "roadlyn: no form '" << Printable(options.form) << "': email, host, ip or phone\n";
        return 2;
    }
    bool allValid = true;
    if (options.tsv) std::cout << "text\tresult\n";
    for (const std::string& text : options.texts) {
        const bool valid = verify(text.c_str());
        const char* const result = valid ? "valid" : "invalid";
        allValid = allValid && valid;
        if (options.tsv)
            std::cout << Printable(text) << '\t' << result << '\n';
        else
            std::cout << result << "  " << Printable(text) << '\n';
    }
    return std::cout.flush().good() && allValid ? 0 : 1;
}

}  // namespace

void AddCheckCommand(CLI::App& app, std::function<int()>& run) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App* const command = app.add_subcommand(
        "check",
        "Says of each text whether it has the form of an e-mail address, a host name, an IP address or a phone number; "
        "the exit code is 1 when one has not. Write -- before a text that starts with a hyphen.");
    command->add_option("FORM", options->form, "email, host, ip or phone")->option_text("FORM")->required();
    command->add_option("TEXT", options->texts, "What to check")->option_text("TEXT...")->required();
    command->add_flag("--tsv", options->tsv, "A header line, then text and result, tab-separated");
    command->callback([options, &run] { run = [options] { return Run(*options); }; });
}

}  // namespace roadlyn
