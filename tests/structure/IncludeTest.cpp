// Who may include whom: read from the include lines of the tree.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path SOURCE = SOURCE_DIR;

/// A room of the tree, and the rooms whose headers its files may include. Headers of a room are named from its root.
struct CRoom {
  std::string folder;
  std::string includeRoot;
  std::set<std::string> mayUse;
};

const std::string HOST = "host";

std::vector<CRoom> rooms() {
  std::vector<CRoom> all{{HOST, HOST, {}}, {"panels", "panels", {HOST}}};
  const std::map<std::string, std::set<std::string>> chain = {
      {"utils", {}},
      {"bson", {"utils"}},
      {"luawrapper", {"utils"}},
      {"net", {"utils", "bson", "luawrapper"}},
      {"rdservice", {"net", "utils", "bson", "luawrapper"}},
      {"gw", {"rdservice", "net", "utils", "bson"}},
      {"counter", {"rdservice", "net", "utils", "bson"}},
      {"vn", {"gw", "counter", "rdservice", "net", "utils", "bson", "luawrapper"}},
      {"runtime", {"vn", "gw", "counter", "rdservice", "net", "utils", "bson", "luawrapper"}},
  };
  for (const auto& [layer, below] : chain) {
    CRoom room{"client/" + layer, "client", {HOST}};
    for (const std::string& other : below) room.mayUse.insert("client/" + other);
    all.push_back(room);
  }
  // The desk sees the contract, the module and the façade.
  all.push_back({"client/desk", "client/desk", {HOST, "panels", "client/runtime", "client/utils"}});
  return all;
}

std::vector<std::string> includesOf(const fs::path& file) {
  static const std::regex line("^\\s*#\\s*include\\s*\"([^\"]+)\"");
  std::vector<std::string> names;
  std::ifstream in(file);
  std::smatch match;
  for (std::string text; std::getline(in, text);)
    if (std::regex_search(text, match, line)) names.push_back(match[1]);
  return names;
}

bool isSource(const fs::path& file) { return file.extension() == ".h" || file.extension() == ".cpp"; }

TEST(Includes, FollowTheLayers) {
  const std::vector<CRoom> all = rooms();
  int checked = 0;
  for (const CRoom& room : all) {
    for (const auto& entry : fs::recursive_directory_iterator(SOURCE / room.folder)) {
      if (!isSource(entry.path())) continue;
      for (const std::string& name : includesOf(entry.path())) {
        // Where the name leads: beside the file, in its own room, or in one that it may use.
        bool found = fs::exists(entry.path().parent_path() / name);
        for (const CRoom& other : all) {
          if (other.folder != room.folder && room.mayUse.count(other.folder) == 0) continue;
          const fs::path target = SOURCE / other.includeRoot / name;
          const fs::path inside = fs::relative(target, SOURCE / other.folder);
          found = found || (fs::exists(target) && *inside.begin() != "..");
        }
        EXPECT_TRUE(found) << entry.path() << " includes \"" << name << "\", which is not there or not allowed";
        ++checked;
      }
    }
  }
  EXPECT_GT(checked, 300);
}

TEST(Includes, NoClientHeaderHidesAContractHeader) {
  for (const auto& entry : fs::recursive_directory_iterator(SOURCE / HOST)) {
    if (entry.path().extension() != ".h") continue;
    const fs::path name = fs::relative(entry.path(), SOURCE / HOST);
    EXPECT_FALSE(fs::exists(SOURCE / "client" / name)) << name;
    EXPECT_FALSE(fs::exists(SOURCE / "panels" / name)) << name;
  }
}

TEST(Includes, ContractAndPanelsUseFewLibraries) {
  static const std::regex line("^\\s*#\\s*include\\s*<([^>]+)>");
  static const std::regex allowed("Q[A-Za-z]+|boost/.*|fmt/.*|[a-z_0-9]+");  // Qt, Boost, fmt, the standard library
  std::smatch match;
  for (const char* folder : {"host", "panels"}) {
    for (const auto& entry : fs::recursive_directory_iterator(SOURCE / folder)) {
      if (!isSource(entry.path())) continue;
      std::ifstream in(entry.path());
      for (std::string text; std::getline(in, text);) {
        if (!std::regex_search(text, match, line)) continue;
        EXPECT_TRUE(std::regex_match(match[1].str(), allowed)) << entry.path() << ": " << text;
      }
    }
  }
}

}  // namespace
