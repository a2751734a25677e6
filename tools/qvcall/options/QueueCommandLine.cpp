#include "CommandLineParts.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "base/text/HostName.h"
#include "base/text/Numbers.h"

namespace qv::tool {
namespace {

constexpr int kAnyNumber = CLI::detail::expected_max_vector_size;
constexpr int kMostRetries = 100;

constexpr const char kElsewhere[] = "Files on other servers";

void TakeHost(std::string_view typed, QueueHost& host) {
  const auto [name, port] = text::SplitPort(typed);
  host.name = name;
  host.port = port ? text::ParseNumber<std::uint16_t>(*port).value_or(0) : 0;
  if (port && host.port == 0) {
    throw CLI::ValidationError("--host", "the port is a number from 1 to 65535");
  }
}

class QueueCommandLine {
 public:
  QueueCommandLine(CLI::App& app, Service service, const char* name, const char* description,
                   std::optional<QueueCommand>& taken)
      : app_(*app.add_subcommand(name, description)->group(kElsewhere)->require_subcommand(1)),
        host_(std::make_shared<QueueHost>()),
        taken_(taken) {
    host_->service = service;
  }

  void AddFtpOptions() {
    AddHost("[ftp://|ftpes://]NAME[:PORT]",
            "The file server; ftpes:// encrypts all that is said and moved");
    AddLogin("USER", "Name of the user; without it, whoever may come without a name");
    app_.add_flag("--active", host_->is_active,
                  "Have the server open the connections for data, for one that cannot do without");
    app_.add_flag("--text", host_->is_text,
                  "Translate line ends; a broken transfer then begins anew");
    AddRest("password");
  }

  void AddCloudOptions() {
    AddHost("[https://|http://]NAME[:PORT]", "The cloud store, which has an interface as S3 does");
    AddLogin("KEY", "The access key")->required();
    app_.add_flag("--virtual-host", host_->has_virtual_host,
                  "Name the bucket before the host, not before the path");
    app_.add_option("--region", host_->region, "The region that the store says it is in")
        ->check(NotEmpty())
        ->option_text("NAME [us-east-1]");
    AddRest("secret key");
  }

  void AddCommands() {
    // The last word is the folder that the others go to.
    auto [put, up] = Add<QueuePut>("put", "Send files to a folder of the server", [](auto& given) {
      given.folder = given.local.back();
      given.local.pop_back();
    });
    AddAll(put, up->local, "LOCAL... FOLDER",
           "Local files, and the folder of the server that they go to, which is made as needed")
        ->expected(2, kAnyNumber);
    put->add_flag("-r", up->recursive, "Send folders with all that is in them");
    auto [get, down] = Add<QueueGet>("get", "Fetch files into a local folder", [](auto& given) {
      given.local_folder = given.paths.back();
      given.paths.pop_back();
    });
    AddAll(get, down->paths, "PATH... LOCALFOLDER",
           "Files on the server, and the local folder that they go to")
        ->expected(2, kAnyNumber);
    get->footer("Folders cannot be fetched: name each file.");
    AddSourceAndTarget<QueueCopy>("cp", "Copy a file");
    AddSourceAndTarget<QueueMove>("mv", "Move or rename a file");
    auto [rm, remove] = Add<QueueRemove>("rm", "Remove files");
    AddAll(rm, remove->paths, "PATH...");
    rm->add_flag("-r", remove->recursive, "Remove folders, with all that is in them");
  }

 private:
  template <class Work>
  struct Added {
    CLI::App* app;
    Work* work;
  };

  static constexpr auto kAsGiven = [](auto&) {};

  CLI::Option* AddHost(const char* text, const char* help) {
    return app_.add_option("--host", *typed_host_, help)
        ->required()
        ->check(NotEmpty())
        ->option_text(text);
  }

  CLI::Option* AddLogin(const char* text, const char* help) {
    return app_.add_option("--login", host_->login, help)->check(NotEmpty())->option_text(text);
  }

  void AddRest(const std::string& password) {
    app_.add_option("--password-file", host_->password_file,
                    "Take the " + password +
                        " from the first line of FILE, or with - of standard input. Without it, "
                        "the terminal asks")
        ->check(NotEmpty())
        ->option_text("FILE");
    app_.add_option("--retries", host_->retries,
                    "How many more times a transfer that broke is tried, from where it broke")
        ->check(CLI::Range(0, kMostRetries))
        ->option_text("N [3]");
    app_.footer("The options for the host may stand behind the command as well: `qvcall " +
                app_.get_name() +
                " --help` has them.\n"
                "What fails is told at the end; with --port, the server's log is told as well.\n"
                "--ca-file and --timeout-ms count for the transfers.");
  }

  // `finish` looks at what was given when all of it is there.
  template <class Work, class Finish = decltype(kAsGiven)>
  Added<Work> Add(const char* name, const char* description, Finish finish = kAsGiven) {
    CLI::App* const added = app_.add_subcommand(name, description)->group("Commands");
    auto work = std::make_shared<Work>();
    added->callback([work, finish, host = host_, typed = typed_host_, &taken = taken_] {
      TakeHost(*typed, *host);
      finish(*work);
      taken = QueueCommand{*host, *work};
    });
    return {added, work.get()};
  }

  static CLI::Option* AddAll(CLI::App* command, std::vector<std::string>& words, const char* text,
                             const char* help = "") {
    return command->add_option("paths", words, help)
        ->required()
        ->check(NotEmpty())
        ->option_text(text);
  }

  template <class Work>
  void AddSourceAndTarget(const char* name, const char* description) {
    auto [added, work] = Add<Work>(name, description);
    added->add_option("source", work->source)->required()->check(NotEmpty())->option_text("FROM");
    added
        ->add_option("target", work->target,
                     "The new path, or with a / at its end the folder to put it into")
        ->required()
        ->check(NotEmpty())
        ->option_text("TO");
  }

  CLI::App& app_;
  // The parser fills these in, after this object's life.
  std::shared_ptr<QueueHost> host_;
  std::shared_ptr<std::string> typed_host_ = std::make_shared<std::string>();
  std::optional<QueueCommand>& taken_;
};

}  // namespace

void AddQueueCommands(CLI::App& app, std::optional<QueueCommand>& taken) {
  QueueCommandLine ftp(app, Service::kFtp, "ftp", "Move files to and from a file server", taken);
  ftp.AddFtpOptions();
  ftp.AddCommands();
  QueueCommandLine cloud(app, Service::kCloud, "cloud", "Move files to and from a cloud store",
                         taken);
  cloud.AddCloudOptions();
  cloud.AddCommands();
}

}  // namespace qv::tool
