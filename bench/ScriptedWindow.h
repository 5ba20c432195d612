#pragma once

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "mainwindow/MainForm.h"

namespace tessara::bench {

/// The main window with its private files in a folder of their own and nobody to answer its questions.
struct ScriptedWindow {
    explicit ScriptedWindow(const std::string& name)
        : folder(std::filesystem::temp_directory_path() / (name + "-" + std::to_string(getpid()))) {
        session.AppPath = session.DesktopPath = session.DocumentsPath = folder;
        std::filesystem::create_directory(folder);
        desktop.shell.drives = {{"/", "/ [File System]"}};
        form.Form_Load();
    }
    ~ScriptedWindow() { std::filesystem::remove_all(folder); }

    void Choose(const std::string& array, int index) { form.Menus().Item(array, index)->trigger(); }

    const std::string folder;
    Session session;
    ScriptedServices desktop;
    SystemClock clock;
    MainForm form{session, desktop.With(desktop.prompts, desktop.clipboard, clock)};
};

inline double Milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

inline double Median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

}  // namespace tessara::bench
