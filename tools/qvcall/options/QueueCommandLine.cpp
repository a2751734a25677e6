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
    throw CLI::ValidationError("--host", "the port must be a number from 1 to 65535");
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
    AddHost("[ftp://|ftpes://]NAME[:PORT]", "The file server; ftpes:// encrypts commands and data");
    AddLogin("USER", "Name of the user; without it, an anonymous login");
    app_.add_flag("--active", host_->is_active,
                  "Let the server open the data connections, if it requires that");
    app_.add_flag("--text", host_->is_text,
                  "Translate line ends; a broken transfer then starts over");
    AddRest("password");
  }

  void AddCloudOptions() {
    AddHost("[https://|http://]NAME[:PORT]",
            "The cloud store, which must have an S3-compatible interface");
    AddLogin("KEY", "The access key")->required();
    app_.add_flag("--virtual-host", host_->has_virtual_host,
                  "Put the name of the bucket before the host, not before the path");
    app_.add_option("--region", host_->region, "The region of the store")
        ->check(NotEmpty())
        ->option_text("NAME [us-east-1]");
    AddRest("secret key");
  }

  void AddCommands() {
    // The last argument is the target folder.
    auto [put, up] = Add<QueuePut>("put", "Send files to a folder of the server", [](auto& given) {
      given.folder = given.local.back();
      given.local.pop_back();
    });
    AddAll(put, up->local, "LOCAL... FOLDER",
           "Local files, and the target folder on the server, which is created if needed")
        ->expected(2, kAnyNumber);
    put->add_flag("-r", up->recursive, "Send folders with all their contents");
    auto [get, down] = Add<QueueGet>("get", "Fetch files into a local folder", [](auto& given) {
      given.local_folder = given.paths.back();
      given.paths.pop_back();
    });
    AddAll(get, down->paths, "PATH... LOCALFOLDER",
           "Files on the server, and the local target folder")
        ->expected(2, kAnyNumber);
    get->footer("Folders cannot be fetched: name each file.");
    AddSourceAndTarget<QueueCopy>("cp", "Copy a file");
    AddSourceAndTarget<QueueMove>("mv", "Move or rename a file");
    auto [rm, remove] = Add<QueueRemove>("rm", "Remove files");
    AddAll(rm, remove->paths, "PATH...");
    rm->add_flag("-r", remove->recursive, "Remove folders with all their contents");
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
                        " from the first line of FILE, or of standard input if FILE is -. Without "
                        "it, the terminal asks")
        ->check(NotEmpty())
        ->option_text("FILE");
    app_.add_option("--retries", host_->retries,
                    "How often a broken transfer is retried; it is resumed where it broke")
        ->check(CLI::Range(0, kMostRetries))
        ->option_text("N [3]");
    app_.footer("The options for the host may also follow the command: `qvcall " + app_.get_name() +
                " --help` lists them.\n"
                "Failures are listed at the end and, with --port, written to the server's log.\n"
                "--ca-file and --timeout-ms apply to the transfers.");
  }

  // `finish` completes the command after parsing.
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
        ->add_option("target", work->target, "The new path, or the target folder if it ends with /")
        ->required()
        ->check(NotEmpty())
        ->option_text("TO");
  }

  CLI::App& app_;
  // The parser fills these in after this object is destroyed.
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
