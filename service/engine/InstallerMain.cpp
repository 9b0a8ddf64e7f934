#include "service/engine/InstallerMain.h"

#include <charconv>
#include <cstring>
#include <optional>

#include "datastore/LProfile.h"
#include "datastore/UserSettings.h"
#include "platform/RandomSource.h"
#include "service/control/LServiceControl.h"
#include "service/email/EmailAddress.h"
#include "service/engine/BackupCommands.h"
#include "service/engine/LinkCommand.h"
#include "service/engine/SampleShop.h"
#include "web/accounts/LAppWebAccount.h"
#include "web/server/LWebletServer.h"

namespace {

constexpr size_t kGeneratedPasswordLetters = 12;
constexpr size_t kMinimumPasswordBytes = 6;

constexpr std::string_view kUsage =
    "quillmarsh -installer [options]\n"
    "  --business NAME      name the business\n"
    "  --admin EMAIL        make this account, or make it an enabled administrator\n"
    "  --password-stdin     take its password from the first line of the input\n"
    "  --port N             the port of the web pages, 1 to 65535\n"
    "  --web on|off         whether the service serves the web pages\n"
    "  --link on|off        whether partner applications may use the stock; the first time,\n"
    "                       on makes an access code and shows it once\n"
    "  --sample             fill an empty business with a small hardware shop\n"
    "or, alone,\n"
    "  --backup FOLDER      copy all data into a new folder in FOLDER\n"
    "  --restore FOLDER --yes\n"
    "                       replace all data by the backup in FOLDER\n"
    "  --help               show this\n";

struct LInstallerOptions {
    std::optional<std::string> business, admin;
    bool passwordFromInput = false;
    std::optional<int> port;
    std::optional<bool> web, link;
    bool sample = false;
    std::optional<std::string> backup, restore;  // folders
    bool yes = false;
    bool help = false;
};

// What stands in the way, in one line; empty when nothing does.
using LProblem = std::string;

std::string_view Trim(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<int> ParsePort(std::string_view text) {
    int port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && port >= 1 && port <= 65535 ? std::optional(port) : std::nullopt;
}

LProblem TakeValue(const std::string& name, const std::string& value, LInstallerOptions& options) {
    if (name == "--business") {
        options.business = std::string(Trim(value));
        return options.business->empty() ? "--business wants a name" : "";
    }
    if (name == "--admin") {
        options.admin = WebAccountKey(value);
        return ValidateAddressSingle(*options.admin) ? "" : "--admin wants an e-mail address";
    }
    if (name == "--port") {
        options.port = ParsePort(value);
        return options.port ? "" : "--port wants a number from 1 to 65535";
    }
    if (name == "--backup" || name == "--restore") {
        (name == "--backup" ? options.backup : options.restore) = value;
        return value.empty() ? name + " wants a folder" : "";
    }
    if (value != "on" && value != "off") return name + " wants on or off";
    (name == "--web" ? options.web : options.link) = value == "on";
    return {};
}

bool WantsValue(std::string_view word) {
    return word == "--business" || word == "--admin" || word == "--port" || word == "--web" ||
           word == "--link" || word == "--backup" || word == "--restore";
}

// Backup and restore stand alone, and only a clear yes replaces all data.
LProblem CheckTogether(const std::vector<std::string>& words, const LInstallerOptions& options) {
    if (options.restore) {
        if (!options.yes) return "--restore replaces all data: confirm with --yes";
        return words.size() == 3 ? "" : "--restore goes with --yes and nothing else";
    }
    if (options.yes) return "--yes goes with --restore";
    return !options.backup || words.size() == 2 ? "" : "--backup goes with nothing else";
}

LProblem ParseOptions(const std::vector<std::string>& words, LInstallerOptions& options) {
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "--password-stdin") {
            options.passwordFromInput = true;
        } else if (word == "--sample") {
            options.sample = true;
        } else if (word == "--yes") {
            options.yes = true;
        } else if (word == "--help") {
            options.help = true;
            return {};
        } else if (WantsValue(word)) {
            if (++i == words.size()) return word + " wants a value";
            const LProblem problem = TakeValue(word, words[i], options);
            if (!problem.empty()) return problem;
        } else {
            return "unknown option " + word;
        }
    }
    return CheckTogether(words, options);
}

// One run of the installer over options that have been understood.
class LInstallation {
public:
    LInstallation(const LInstallerOptions& options, std::ostream& out)
        : options_(options), out_(out) {}

    LProblem Run(const std::optional<std::string>& password) {
        LProfile profile;
        LProblem problem = CheckWritable(profile);
        if (problem.empty()) problem = NameBusiness(profile);
        if (problem.empty()) problem = PrepareAccount(password);
        if (problem.empty()) problem = StoreWebSettings();
        if (problem.empty() && options_.link) {
            problem = LTurnLinkFromCommandLine(profile, *options_.link, out_);
        }
        if (problem.empty() && options_.sample) problem = AddSample(profile);
        return problem;
    }

private:
    // Initialising a business never fails by itself: its records are read back to tell.
    static LProblem CheckWritable(const LProfile& profile) {
        const LFileStoreListBase settings = profile.List("Misc");
        LRecord stored;
        if (settings.Open(stored, "Options") && stored.GetBool("Init", false)) return {};
        return "cannot write to the data folder " + profile.DatabaseFolder();
    }

    LProblem NameBusiness(const LProfile& profile) {
        LRecord company;
        profile.OpenSettings(company, "Company");
        const bool isNamed = !company.GetString("Name").empty();
        if (!options_.business && isNamed) return {};
        const std::string name = options_.business.value_or(kDefaultBusinessName);
        company.SetString("Name", name);
        company.Flush();
        if (profile.BusinessName() != name) return "cannot store the name of the business";
        out_ << "Business: " << name << " in " << profile.DatabaseFolder() << "\n";
        return {};
    }

    LProblem PrepareAccount(const std::optional<std::string>& password) {
        const std::vector<std::string> administrators = EnabledAdministrators();
        std::string email = options_.admin.value_or("");
        if (email.empty()) {
            if (administrators.size() > 1 && password) {
                return "--password-stdin needs --admin: there are several administrators";
            }
            if (!administrators.empty() && !password) return {};
            email = administrators.empty() ? kDefaultAdministrator : administrators.front();
        }
        return MakeAdministrator(email, password);
    }

    static std::vector<std::string> EnabledAdministrators() {
        std::vector<std::string> emails;
        LAppWebAccountList().ForEach([&](const LAppWebAccount& account) {
            if (account.IsEnabled() && account.IsAdministrator()) emails.push_back(account.Email());
            return true;
        });
        return emails;
    }

    LProblem MakeAdministrator(const std::string& email, const std::optional<std::string>& given) {
        LAppWebAccount account;
        const bool isNew = !OpenWebAccount(account, email);
        const bool isGenerated = isNew && !given;
        const std::string password = given.value_or(RandomLetters(kGeneratedPasswordLetters));
        const bool isStored = isNew ? MakeAccount(email, password) : Promote(account, given);
        if (!isStored) return "cannot store the account " + email;
        out_ << (isNew ? "New administrator: " : "Administrator: ") << email << "\n";
        if (isGenerated) out_ << "Password (shown only now): " << password << "\n";
        if (given) out_ << "Password: as given\n";
        return {};
    }

    static bool MakeAccount(const std::string& email, const std::string& password) {
        LNewAccount account;
        account.email = email;
        account.password = password;
        account.displayName = email.substr(0, email.find('@'));
        account.role = LAccountRole::kAdministrator;
        account.profileIds = {0};
        account.lastUsedProfileId = 0;
        return LAppWebAccountCreate(account);
    }

    // Whoever sits at the machine may also open an account that guesses have locked.
    static bool Promote(LAppWebAccount& account, const std::optional<std::string>& password) {
        account.SetRole(LAccountRole::kAdministrator);
        account.SetBool("Enabled", true);
        account.SetInt("LogonFailures", 0);
        if (password) account.SetString("Password", *password);
        const std::string email = account.Email();
        account.Flush();
        LAppWebAccount stored;
        return OpenWebAccount(stored, email) && stored.IsEnabled() && stored.IsAdministrator() &&
               (!password || stored.GetString("Password") == *password);
    }

    LProblem StoreWebSettings() {
        const auto store = [](std::string_view name, const std::string& value) {
            return LUserSettingSetString("WebServer", name, value);
        };
        if (options_.port && !store("Port", std::to_string(*options_.port))) {
            return "cannot store the web settings";
        }
        if (options_.web && !store("Enabled", *options_.web ? "1" : "0")) {
            return "cannot store the web settings";
        }
        if (options_.port || options_.web) {
            out_ << "Web server: " << (LWebletServer::IsWebletServerEnabled() ? "on" : "off")
                 << ", port " << LWebletServer::GetWebletServerPort() << "\n";
            LServiceApplyWebSettings();  // a service that runs takes them over at once
        }
        return {};
    }

    LProblem AddSample(const LProfile& profile) {
        const LSampleResult sample = FillSampleShop(profile, LDate::Today());
        if (!sample.problem.empty()) return "no sample: " + sample.problem;
        out_ << "Sample: " << sample.items << " items, " << sample.suppliers << " suppliers, "
             << sample.customers << " customers, " << sample.receipts << " receipts and "
             << sample.sales << " sales of the last two months, " << sample.orders
             << " purchase orders\n";
        return {};
    }

    const LInstallerOptions& options_;
    std::ostream& out_;
};

// The first line of the input, without the blanks that the logon page would take off as well.
LProblem ReadPassword(std::istream& in, std::string& password) {
    std::string line;
    std::getline(in, line);
    password = Trim(line);
    if (password.size() >= kMinimumPasswordBytes) return {};
    return "the password must have a minimum of " + std::to_string(kMinimumPasswordBytes) +
           " characters";
}

LProblem Run(const LInstallerOptions& options, const std::optional<std::string>& password,
             std::ostream& out) {
    if (options.help) return out << kUsage, LProblem();
    if (options.backup) return LBackupFromCommandLine(*options.backup, out);
    if (options.restore) return LRestoreFromCommandLine(*options.restore, out);
    return LInstallation(options, out).Run(password);
}

}  // namespace

int LInstallerMain(const std::vector<std::string>& words, std::istream& in, std::ostream& out,
                   std::ostream& error) {
    LInstallerOptions options;
    LProblem problem = ParseOptions(words, options);
    std::optional<std::string> password;
    if (problem.empty() && options.passwordFromInput && !options.help) {
        problem = ReadPassword(in, password.emplace());
    }
    if (problem.empty()) problem = Run(options, password, out);
    if (problem.empty()) return 0;
    error << "quillmarsh -installer: " << problem << "\n";
    return 1;
}
