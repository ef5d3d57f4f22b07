#include "support/file_tree.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

// Lives as long as the process: the module reads TARN_ROOT once.
struct Tree {
    fs::path directory;

    Tree() {
        std::string name = fs::temp_directory_path() / "tarn-test-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) {
            std::abort();
        }
        directory = name;
        setenv("TARN_ROOT", (directory / "root").c_str(), 1);
        setenv("PATH", ((directory / "bin").string() + ":" + std::getenv("PATH")).c_str(), 1);
    }
    Tree(const Tree &) = delete;
    Tree &operator=(const Tree &) = delete;
    ~Tree() { fs::remove_all(directory); }
} tree;

}  // namespace

void FileTest::SetUp() {
    ModuleTest::SetUp();
    fs::remove_all(tree.directory);
    fs::create_directories(tree.directory / "bin");
    fs::create_directories(at("/mnt/fs/tools/cpe"));
    fs::create_directories(at("/mnt/ram/config"));
}

std::string FileTest::at(const std::string &path) {
    return (tree.directory / "root").string() + path;
}

void FileTest::write(const std::string &path, const std::string &content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::optional<std::string> FileTest::read(const std::string &path) {
    const std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void FileTest::stand_in(const std::string &program, const std::string &script) {
    const fs::path path = tree.directory / "bin" / program;
    write(path, "#!/bin/sh\necho \"$(basename \"$0\") $*\" >>'" + (tree.directory / "commands").string() +
                    "'\n" + script + "\n");
    fs::permissions(path, fs::perms::owner_all);
}

std::vector<std::string> FileTest::commands() {
    std::vector<std::string> lines;
    std::istringstream all(read(tree.directory / "commands").value_or(""));
    for (std::string line; std::getline(all, line);) {
        lines.push_back(line);
    }
    return lines;
}
