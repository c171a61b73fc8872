#include "tests/support/RadicaleServer.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace {

std::string settingsFor(int port) {
    return "[server]\nhosts = 127.0.0.1:" + std::to_string(port) +
           "\nssl = True\ncertificate = server.pem\nkey = key.pem\n"
           "[auth]\ntype = htpasswd\nhtpasswd_filename = users\nhtpasswd_encryption = plain\ndelay = 0\n"
           "[storage]\nfilesystem_folder = storage\n[logging]\nlevel = critical\n";
}

} // namespace

RadicaleServer::RadicaleServer() {
    std::filesystem::create_directories(pathOf("").parent_path());
    std::ofstream(pathOf(".Radicale.props")) << R"({"tag": "VADDRESSBOOK", "D:displayname": "People"})";
    std::ofstream(folder.path() / "settings") << settingsFor(port);
    std::ofstream(folder.path() / "users") << "ann:secret\n";
    std::ofstream(folder.path() / "password") << "secret\n";
    std::filesystem::permissions(folder.path() / "password", std::filesystem::perms::owner_read);
    const std::string prepare =
        "cd " + folder.path().string() +
        " && openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=localhost"
        " -addext subjectAltName=IP:127.0.0.1 -keyout key.pem -out server.pem 2>/dev/null";
    process = std::system(prepare.c_str()) == 0 ? ::fork() : -1;
    if (process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::chdir(folder.path().c_str()) == 0) {
            ::execl("/usr/bin/python3", "python3", "-m", "radicale", "--config", "settings", nullptr);
        }
        ::_exit(127);
    }
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (process < 0 || !answersAt(port)) {
        if (process < 0 || std::chrono::steady_clock::now() > giveUp || ::waitpid(process, nullptr, WNOHANG) != 0) {
            throw std::runtime_error(
                "radicale does not start; install python3-radicale and openssl (scripts/install-deps.sh)");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

RadicaleServer::~RadicaleServer() {
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
}

std::filesystem::path RadicaleServer::pathOf(const std::string& card) const {
    return folder.path() / "storage/collection-root/ann/people" / card;
}

void RadicaleServer::put(const std::string& card, const std::string& name, const std::string& number) const {
    std::ofstream(pathOf(card)) << "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" << card << "\r\nFN:" << name << "\r\nN:" << name
                                << ";;;;\r\nTEL;TYPE=CELL:" << number << "\r\nEND:VCARD\r\n";
}

void RadicaleServer::remove(const std::string& card) const {
    std::filesystem::remove(pathOf(card));
}
