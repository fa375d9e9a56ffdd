#pragma once

// A recogniser without an engine: it answers the lines pushed for each call
// in turn (none once they run out) and counts the pictures it was given.

#include "platform/text_recognizer.h"

#include <QList>
#include <deque>
#include <functional>
#include <mutex>

namespace tltest {

class ScriptedTextRecognizer : public tl::platform::TextRecognizer
{
public:
    QStringList recognizeLines(const QImage &image,
                               const tl::platform::RecognitionControl &control) override
    {
        std::lock_guard lock(mutex_);
        pictures_ << image.size();
        if (beforeAnswer)
            beforeAnswer(int(pictures_.size()), control);
        if (answers_.empty() || control.isCancelled())
            return {};
        QStringList lines = answers_.front();
        answers_.pop_front();
        return lines;
    }

    void push(const QStringList &lines)
    {
        std::lock_guard lock(mutex_);
        answers_.push_back(lines);
    }
    QList<QSize> pictures() const
    {
        std::lock_guard lock(mutex_);
        return pictures_;
    }

    // Called with the one-based number of each picture before it is answered.
    std::function<void(int picture, const tl::platform::RecognitionControl &control)> beforeAnswer;

private:
    mutable std::mutex mutex_;
    std::deque<QStringList> answers_;
    QList<QSize> pictures_;
};

} // namespace tltest
