#include "tests/support/SlapdServer.h"

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

// Paths are relative to the server's folder.
constexpr const char* settings = R"(include /etc/ldap/schema/core.schema
include /etc/ldap/schema/cosine.schema
include /etc/ldap/schema/inetorgperson.schema
modulepath /usr/lib/ldap
moduleload back_mdb
TLSCertificateFile server.pem
TLSCertificateKeyFile key.pem
database mdb
maxsize 67108864
suffix "dc=example,dc=com"
rootdn "cn=admin,dc=example,dc=com"
rootpw secret
directory .
)";

// Names that would mean something in a filter, numbers written in every way, and attributes that are hardly of use.
constexpr const char* oddPeople[] = {
    ("Nora Numbers\ntelephoneNumber: +44 (1632) 960-123\nMOBILE: +44.7700/900 456\n"
     "roomNumber: *21#\nroomNumber: 44 [7700] 900.456\nou: Sales\nl: Leeds\nemployeeType: temporary"),
    "Star * Odd\ntelephoneNumber: 8001",
    "Bracket (cn=* Odd\ntelephoneNumber: 8002",
    "Back\\2a Odd\ntelephoneNumber: 8003",
    "Zo\u00EB Odd\ndisplayName: Zoe in Full\ntelephoneNumber: 8004",
    "J\u00F6rg \u00C5s\ntelephoneNumber: 8106",
    "Byte Broken\njpegPhoto:: //7/\ntelephoneNumber: 8005\nroomNumber: not here",
};

void writePeople(std::ofstream file) {
    file << "dn: dc=example,dc=com\nobjectClass: domain\n";
    auto add = [&, id = 0](const std::string& attributes) mutable {
        file << "\ndn: uid=" << id++ << ",dc=example,dc=com\nobjectClass: inetOrgPerson\n"
             << "sn: Name\ncn: " << attributes << "\n";
    };
    for (const char* person : oddPeople) {
        add(person);
    }
    for (int i = 0; i < 3'000; ++i) {
        const std::string digits = std::to_string(10'000 + i).substr(1);
        add("Person " + digits + "\ntelephoneNumber: 71-" + digits);
    }
    // One entry of about 170 kB.
    std::string crowd = "Crowd " + std::string(120'000, 'x');
    for (int i = 0; i < 3'000; ++i) {
        crowd += "\ntelephoneNumber: 60" + std::to_string(10'000 + i);
    }
    add(crowd);
}

} // namespace

SlapdServer::SlapdServer() {
    const std::string name = folder.path();
    std::ofstream(folder.path() / "slapd.conf") << settings;
    writePeople(std::ofstream(folder.path() / "people.ldif"));
    const std::string prepare =
        "cd " + name +
        " && openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=localhost"
        " -addext subjectAltName=IP:127.0.0.1 -keyout key.pem -out server.pem 2>/dev/null"
        " && /usr/sbin/slapadd -q -f slapd.conf -l people.ldif";
    const std::string urls = url + " " + tlsUrl;
    process = std::system(prepare.c_str()) == 0 ? ::fork() : -1;
    if (process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::chdir(name.c_str()) == 0) {
            ::execl("/usr/sbin/slapd", "slapd", "-d", "0", "-f", "slapd.conf", "-h", urls.c_str(), nullptr);
        }
        ::_exit(127);
    }
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (process < 0 || !answersAt(port) || !answersAt(tlsPort)) {
        if (process < 0 || std::chrono::steady_clock::now() > giveUp || ::waitpid(process, nullptr, WNOHANG) != 0) {
            throw std::runtime_error("slapd does not start; install slapd and openssl (scripts/install-deps.sh), or " +
                                     ("try in " + name) + ": /usr/sbin/slapd -d 1 -f slapd.conf");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

SlapdServer::~SlapdServer() {
    ::kill(process, SIGTERM);
    ::waitpid(process, nullptr, 0);
}
