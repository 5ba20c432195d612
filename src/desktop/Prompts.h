#pragma once

#include <deque>
#include <string>
#include <vector>

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

/// Questions and messages to the user; all of them are modal.
class Prompts {
  public:
    virtual ~Prompts() = default;
    virtual Answer Ask(const Prompt& prompt) = 0;
    virtual void Beep() = 0;
    /// The folder picker; empty where the user cancels.
    virtual std::string PickFolder(const std::string& title) = 0;
};

/// Answers from a list and remembers what was asked.
class ScriptedPrompts final : public Prompts {
  public:
    std::deque<Answer> answers;  ///< taken one by one; an unexpected question gets Cancel
    std::deque<std::string> folders;
    std::vector<Prompt> asked;
    int beeps = 0;

    Answer Ask(const Prompt& prompt) override {
        asked.push_back(prompt);
        if (answers.empty()) return Answer::Cancel;
        const Answer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    void Beep() override { ++beeps; }
    std::string PickFolder(const std::string&) override {
        if (folders.empty()) return {};
        std::string folder = folders.front();
        folders.pop_front();
        return folder;
    }
};

}  // namespace tessara
