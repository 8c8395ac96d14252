#pragma once

#include "BackgroundTasks.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace torvo::app {

/// The answer, yes or no, to a question about the file system. It is looked up in the background: a
/// slow card or share may answer late or never. Belongs to the main thread and must outlive the
/// tasks.
template <typename Question>
class BackgroundAnswer {
public:
    using LookUp = std::function<bool(const Question&)>; ///< called in the background

    /// `changed` is called after each change of the answer.
    BackgroundAnswer(BackgroundTasks& tasks, LookUp lookUp, std::function<void()> changed)
        : tasks_(tasks), lookUp_(std::move(lookUp)), changed_(std::move(changed)) {}

    /// False without a question and until the answer arrives.
    bool isYes() const { return isYes_; }

    /// Looks the answer up, again if the question is the same. It is kept until then.
    void ask(const std::optional<Question>& question) {
        if (question != question_) {
            waiting_ = nullptr; // ignores the answer to the old question
            question_ = question;
            set(false);
        }
        if (!question_)
            return;
        if (waiting_) {
            waiting_->isOutdated = true;
            return;
        }
        waiting_ = std::make_shared<Waiting>();
        tasks_.start([this, waiting = waiting_, asked = *question_, lookUp = lookUp_] {
            const bool isYes = lookUp(asked);
            tasks_.postToMainThread([this, waiting, isYes] { take(waiting, isYes); });
        });
    }

private:
    struct Waiting {
        bool isOutdated = false; ///< the question was asked again
    };

    void take(const std::shared_ptr<Waiting>& waiting, bool isYes) {
        if (waiting != waiting_)
            return;
        waiting_ = nullptr;
        set(isYes);
        if (waiting->isOutdated)
            ask(question_);
    }
    void set(bool isYes) {
        if (std::exchange(isYes_, isYes) != isYes)
            changed_();
    }

    BackgroundTasks& tasks_;
    const LookUp lookUp_;
    const std::function<void()> changed_;
    std::optional<Question> question_;
    std::shared_ptr<Waiting> waiting_;
    bool isYes_ = false;
};

} // namespace torvo::app
