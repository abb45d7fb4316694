// A program that lies beside the test.
#pragma once

#include <fmt/format.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>

namespace lcdtest {

/// Run by a shell that tells its process id first; one line of its output after the other.
class Program {
public:
    Program(const std::string& name, const std::string& options) {
        const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
        pipe_ = ::popen(fmt::format("echo $$; exec {} {} 2>&1", program.string(), options).c_str(), "r");
        id_ = std::stoi(line());
    }
    std::string line() {
        std::string text;
        for (int c = std::fgetc(pipe_); c != EOF; c = std::fgetc(pipe_)) {
            text += static_cast<char>(c);
            if (c == '\n') {
                break;
            }
        }
        return text;
    }
    void signal(int number) const { ::kill(id_, number); }
    int exitStatus() {
        const int status = ::pclose(pipe_);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    FILE* pipe_ = nullptr;
    int id_ = 0;
};

}  // namespace lcdtest
