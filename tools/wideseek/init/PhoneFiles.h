// The files of a new phone: what stands in each, with words for whoever opens it.
#pragma once

#include <string>
#include <string_view>

namespace wideseek {

// A source that a phone may have, in the order in which it is asked, and the file in config/contacts that it reads.
struct SourceFile {
    const char* id;
    const char* displayName;
    const char* file;
    std::string_view content; // of a new one; empty: a phone without the file works, too
};

inline constexpr SourceFile sourceFiles[] = {
    {"local_directory_search", "Contacts", "local_directory.csv",
     "name,number,work,mobile,home,extra\n"
     "# One contact on each line; a line like this one is skipped. Fields with a comma stand in quotes. Another "
     "column\n"
     "# of a name that is there already takes a further number; docs/contact-files.md lists the names.\n"
     "# Zoë Fairweather,,+44 20 7946 0070,+44 7700 900170,,\"Sales, London\"\n"
     "# \"wideseek import\" adds what other programs have written: vCard, CSV, LDIF. Instead of this file\n"
     "# local_directory.vcf may stand here, or a folder local_directory with .vcf files in it.\n"},
    {"calllog_search", "Call log", "call_log.csv",
     "time,direction,name,number,extra\n"
     "# One call on each line; its direction is out, in or missed.\n"
     "# 2026-11-20T16:48:34,out,Zoë Fairweather,+44 20 7946 0070,\n"},
    {"BroadSoft_directory_search", "Company", "broadsoft_directory.csv", {}},
    {"ldap_search", "LDAP", "ldap_directory.csv", {}},
    {"remote_directory_search", "Remote directory", "remote_directory.csv", {}},
    {"BroadSoft_UC_search", "Buddies", "presence_buddies.json", {}},
};

inline constexpr std::string_view newSettings =
    "; The phone's settings.\n"
    "\n"
    "[features]\n"
    "; 1: an empty search box offers the latest outgoing calls\n"
    "FeaturesRecentCallEnable=1\n"
    "\n"
    "[dialling]\n"
    "; Your country's own code, what is dialled ahead of a number within it, and ahead of a country code: with these,\n"
    "; 020 7946 0070 and +44 20 7946 0070 are one number to search for\n"
    ";country_code=44\n"
    ";trunk_prefix=0\n"
    ";international_prefix=00\n"
    "\n"
    "[ldap]\n"
    "; embedded: config/contacts/ldap_directory.csv answers, delay_ms after it was asked\n"
    "mode=embedded\n"
    "delay_ms=0\n"
    "\n"
    "; A server instead: mode=server, and these with your own values; schema may be inetorgperson or enterprise\n"
    ";mode=server\n"
    ";url=ldaps://ldap.example.com\n"
    ";schema=inetorgperson\n"
    ";base=dc=example,dc=com\n"
    ";bind_dn=\n"
    ";password=\n"
    "\n"
    "; A vCard or CSV file on a web server, or a CardDAV address book, as the remote directory\n"
    ";[remote_directory]\n"
    ";url=https://contacts.example.com/\n"
    ";user=\n"
    ";password_file=\n";

// The list of these sources (wideseek.xml), enabled where isThere(file) holds.
template <typename IsThere> std::string newSourceList(IsThere isThere) {
    std::string list = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<!--\n"
                       "  The contact sources that a search asks, lowest priority first. Each reads a file in "
                       "config/contacts.\n"
                       "  Those without one are switched off: put the file there, then set enable=\"1\".\n"
                       "-->\n"
                       "<root_wideseek>\n";
    for (const bool enabled : {true, false}) { // one that is switched off ends the list for those behind it
        int priority = 0;
        for (const SourceFile& source : sourceFiles) {
            ++priority;
            if (isThere(source.file) == enabled) {
                list.append("  <!-- ").append(source.file).append(" -->\n  <item id_name=\"").append(source.id);
                list.append("\" display_name=\"").append(source.displayName).append("\" enable=\"");
                list.append(enabled ? "1" : "0").append("\" priority=\"").append(std::to_string(priority));
                list.append("\"/>\n");
            }
        }
    }
    return list + "</root_wideseek>\n";
}

} // namespace wideseek
