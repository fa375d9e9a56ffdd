#pragma once

// Recordings of any format the system's media libraries read, decoded and
// resampled to mono 16-bit samples at one rate, piece by piece, so an hour
// of speech never sits in memory at once.

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

namespace tl::platform {

class AudioDecoder
{
public:
    AudioDecoder(const QString &path, int sampleRate);
    ~AudioDecoder();
    AudioDecoder(const AudioDecoder &) = delete;
    AudioDecoder &operator=(const AudioDecoder &) = delete;

    // Whether the file holds a stream of sound that can be decoded.
    bool isOpen() const;
    // The length of the recording in seconds; 0 when the file doesn't say.
    double duration() const;
    // The next samples; empty at the end, or where the stream is damaged.
    std::vector<int16_t> read();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace tl::platform
