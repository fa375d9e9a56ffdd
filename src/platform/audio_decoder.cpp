#include "platform/audio_decoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

#include <mutex>
#include <spdlog/spdlog.h>

namespace tl::platform {

struct AudioDecoder::Private
{
    int rate = 0;
    AVFormatContext *format = nullptr;
    AVCodecContext *codec = nullptr;
    SwrContext *resampler = nullptr;
    AVPacket *packet = nullptr;
    AVFrame *frame = nullptr;
    int stream = -1;
    bool inputDone = false;   // every packet has gone to the decoder
    bool decoderDone = false; // the decoder has given its last frame
    bool flushed = false;     // the resampler has given what it held back

    ~Private()
    {
        av_frame_free(&frame);
        av_packet_free(&packet);
        swr_free(&resampler);
        avcodec_free_context(&codec);
        avformat_close_input(&format);
    }

    bool open(const QString &path);
    std::vector<int16_t> convert(const uint8_t **input, int inputSamples);
    std::vector<int16_t> next();
};

bool AudioDecoder::Private::open(const QString &path)
{
    // The libraries' own chatter about odd files would end up in our output.
    static std::once_flag quiet;
    std::call_once(quiet, [] { av_log_set_level(AV_LOG_QUIET); });
    if (avformat_open_input(&format, path.toUtf8().constData(), nullptr, nullptr) < 0)
        return false;
    if (avformat_find_stream_info(format, nullptr) < 0)
        return false;
    const AVCodec *decoder = nullptr;
    stream = av_find_best_stream(format, AVMEDIA_TYPE_AUDIO, -1, -1, &decoder, 0);
    if (stream < 0 || !decoder)
        return false;
    codec = avcodec_alloc_context3(decoder);
    if (!codec || avcodec_parameters_to_context(codec, format->streams[stream]->codecpar) < 0 ||
        avcodec_open2(codec, decoder, nullptr) < 0)
        return false;
    if (codec->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&codec->ch_layout, codec->ch_layout.nb_channels);
    AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
    if (swr_alloc_set_opts2(&resampler, &mono, AV_SAMPLE_FMT_S16, rate, &codec->ch_layout,
                            codec->sample_fmt, codec->sample_rate, 0, nullptr) < 0 ||
        swr_init(resampler) < 0)
        return false;
    packet = av_packet_alloc();
    frame = av_frame_alloc();
    return packet && frame;
}

std::vector<int16_t> AudioDecoder::Private::convert(const uint8_t **input, int inputSamples)
{
    const int room = swr_get_out_samples(resampler, inputSamples);
    if (room <= 0)
        return {};
    std::vector<int16_t> samples(static_cast<size_t>(room));
    auto *output = reinterpret_cast<uint8_t *>(samples.data());
    const int made = swr_convert(resampler, &output, room, input, inputSamples);
    samples.resize(size_t(std::max(made, 0)));
    return samples;
}

std::vector<int16_t> AudioDecoder::Private::next()
{
    while (!decoderDone) {
        const int received = avcodec_receive_frame(codec, frame);
        if (received == 0) {
            std::vector<int16_t> samples =
                convert(const_cast<const uint8_t **>(frame->extended_data), frame->nb_samples);
            av_frame_unref(frame);
            if (!samples.empty())
                return samples;
            continue;
        }
        if (received == AVERROR_EOF || received != AVERROR(EAGAIN)) {
            decoderDone = true;
            break;
        }
        if (inputDone) {
            decoderDone = true;
            break;
        }
        const int read = av_read_frame(format, packet);
        if (read < 0) {
            inputDone = true;
            avcodec_send_packet(codec, nullptr);
            continue;
        }
        if (packet->stream_index == stream && avcodec_send_packet(codec, packet) < 0)
            spdlog::info("audio: a damaged packet is skipped");
        av_packet_unref(packet);
    }
    if (flushed)
        return {};
    flushed = true;
    return convert(nullptr, 0);
}

AudioDecoder::AudioDecoder(const QString &path, int sampleRate) : d(std::make_unique<Private>())
{
    d->rate = sampleRate;
    if (!d->open(path)) {
        spdlog::info("audio: cannot decode {}", path.toStdString());
        d.reset();
    }
}

AudioDecoder::~AudioDecoder() = default;

bool AudioDecoder::isOpen() const
{
    return d != nullptr;
}

double AudioDecoder::duration() const
{
    if (!d || d->format->duration == AV_NOPTS_VALUE || d->format->duration <= 0)
        return 0;
    return double(d->format->duration) / AV_TIME_BASE;
}

std::vector<int16_t> AudioDecoder::read()
{
    return d ? d->next() : std::vector<int16_t>{};
}

} // namespace tl::platform
