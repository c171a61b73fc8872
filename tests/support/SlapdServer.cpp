#include "tests/support/SlapdServer.h"

#include "tests/support/FaultyPeer.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace {

constexpr const char* settings = R"(include /etc/ldap/schema/core.schema
include /etc/ldap/schema/cosine.schema
include /etc/ldap/schema/inetorgperson.schema
attributetype ( 1.1.2.1.1 NAME 'deskPhone' EQUALITY caseIgnoreMatch SUBSTR caseIgnoreSubstringsMatch
  SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
modulepath /usr/lib/ldap
moduleload back_mdb
TLSCertificateFile FOLDER/server.pem
TLSCertificateKeyFile FOLDER/key.pem
database mdb
maxsize 67108864
dbnosync
suffix "dc=example,dc=com"
rootdn "cn=admin,dc=example,dc=com"
rootpw secret
directory FOLDER
)";

// Names that would mean something in a filter, numbers written in every way, and attributes that are hardly of use.
constexpr std::pair<const char*, const char*> oddPeople[] = {
    {"Nora Numbers", "telephoneNumber: +44 (1632) 960-123\nMOBILE: +44.7700/900 456\n"
                     "deskPhone: *21#\ndeskPhone: 44 [7700] 900.456"},
    {"Star * Odd", "telephoneNumber: 8001"},
    {"Bracket (cn=* Odd", "telephoneNumber: 8002"},
    {"Back\\2a Odd", "telephoneNumber: 8003"},
    {"Zo\u00EB Odd", "displayName: Zoe in Full\ntelephoneNumber: 8004"},
    {"Byte Broken", "jpegPhoto:: //7/\ntelephoneNumber: 8005\ndeskPhone: not here"},
};

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0) {
        throw std::runtime_error("failed: " + command + "; install slapd and openssl (scripts/install-deps.sh)");
    }
}

} // namespace

SlapdServer::SlapdServer() : m_port(freePort()), m_tlsPort(freePort()) {
    std::string folder = (std::filesystem::temp_directory_path() / "slapd-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) {
        throw std::runtime_error("no temporary folder: " + folder);
    }
    m_folder = folder;
    writeFiles();
    start();
}

SlapdServer::~SlapdServer() {
    stop();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

void SlapdServer::writeFiles() {
    const std::string folder = m_folder.string();
    std::ofstream(m_folder / "slapd.conf") << replaced(settings, "FOLDER", folder);
    std::ofstream ldif(m_folder / "people.ldif");
    ldif << "dn: dc=example,dc=com\nobjectClass: domain\n\n";
    for (int i = 0; const auto& [name, attributes] : oddPeople) {
        ldif << "dn: uid=odd" << i++
             << ",dc=example,dc=com\nobjectClass: inetOrgPerson\nobjectClass: extensibleObject\n"
             << "sn: Odd\ncn: " << name << "\n"
             << attributes << "\n\n";
    }
    for (int i = 0; i < people; ++i) {
        char entry[256];
        std::snprintf(entry, sizeof entry,
                      "dn: uid=p%04d,dc=example,dc=com\nobjectClass: inetOrgPerson\ncn: Person %04d\nsn: Person\n"
                      "telephoneNumber: 71-%04d\n\n",
                      i, i, i);
        ldif << entry;
    }
    ldif.close();
    run("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=localhost"
        " -addext subjectAltName=IP:127.0.0.1 -keyout " +
        folder + "/key.pem -out " + folder + "/server.pem 2>/dev/null");
    run("/usr/sbin/slapadd -q -f " + folder + "/slapd.conf -l " + folder + "/people.ldif");
}

void SlapdServer::start() {
    const std::string file = (m_folder / "slapd.conf").string();
    const std::string urls = url() + " " + tlsUrl();
    m_process = ::fork();
    if (m_process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::execl("/usr/sbin/slapd", "slapd", "-d", "0", "-f", file.c_str(), "-h", urls.c_str(), nullptr);
        ::_exit(127);
    }
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!answersAt(m_port) || !answersAt(m_tlsPort)) {
        if (std::chrono::steady_clock::now() > giveUp || ::waitpid(m_process, nullptr, WNOHANG) != 0) {
            throw std::runtime_error("slapd does not start; try: /usr/sbin/slapd -d 1 -f " + file);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void SlapdServer::stop() {
    ::kill(m_process, SIGTERM);
    ::waitpid(m_process, nullptr, 0);
}

void SlapdServer::restart() {
    stop();
    start();
}
