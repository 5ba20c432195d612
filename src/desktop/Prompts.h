#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/rastx/Picture.h"

namespace tessara {

enum class Answer { Ok, Cancel, Yes, No, Retry };
enum class PromptButtons { Ok, YesNo, RetryCancel };
enum class PromptIcon { None, Information, Question, Warning };

/// A message box.
struct Prompt {
    std::string text;
    PromptButtons buttons = PromptButtons::Ok;
    PromptIcon icon = PromptIcon::None;
};

/// A row of a save dialog's list of types.
struct SaveFilter {
    std::string name;     ///< shown as it stands: "GIF Files (*.gif)"
    std::string pattern;  ///< "*.gif"; "*.*" stands for every file
};

/// What a save dialog starts with. Paths are bytes.
struct SaveRequest {
    std::string folder;
    std::string name;  ///< of the file, with or without its folder
    std::vector<SaveFilter> filters;
    int filterIndex = 1;  ///< from 1
};

/// Questions and messages to the user; all of them are modal.
class Prompts {
  public:
    virtual ~Prompts() = default;
    virtual Answer Ask(const Prompt& prompt) = 0;
    virtual void Beep() = 0;
    /// The folder picker, which begins in `start` if there is such a folder; empty where the user cancels.
    virtual std::string BrowseFolder(const std::string& title, const std::string& start) = 0;
    /// The save dialog; asks by itself before an existing file is chosen. A name without an extension gets
    /// that of the chosen filter. Empty where the user cancels.
    virtual std::string PickSaveFile(const SaveRequest& request) = 0;
    /// The colour dialog; `start` where the user cancels.
    virtual ColorNumber PickColor(const std::string& title, ColorNumber start) = 0;
};

/// Answers from lists, each taken one by one, and remembers what was asked.
class ScriptedPrompts final : public Prompts {
  public:
    std::deque<Answer> answers;  ///< an unexpected question gets Cancel, as all dialogs here do
    std::deque<std::string> folders;
    std::deque<std::string> files;
    std::deque<ColorNumber> colors;
    std::vector<Prompt> asked;
    std::vector<SaveRequest> saveRequests;
    std::vector<std::string> foldersAskedFor;  ///< title and start
    int beeps = 0;
    std::function<void()> whileAsking = [] {};  ///< what still happens when a message is on screen

    Answer Ask(const Prompt& prompt) override {
        asked.push_back(prompt);
        whileAsking();
        return Next(answers, Answer::Cancel);
    }
    void Beep() override { ++beeps; }
    std::string BrowseFolder(const std::string& title, const std::string& start) override {
        foldersAskedFor.push_back(title + " | " + start);
        return Next(folders, {});
    }
    std::string PickSaveFile(const SaveRequest& request) override {
        saveRequests.push_back(request);
        return Next(files, {});
    }
    ColorNumber PickColor(const std::string&, ColorNumber start) override { return Next(colors, start); }

  private:
    template <typename Value>
    static Value Next(std::deque<Value>& values, Value otherwise) {
        if (values.empty()) return otherwise;
        Value value = std::move(values.front());
        values.pop_front();
        return value;
    }
};

}  // namespace tessara
