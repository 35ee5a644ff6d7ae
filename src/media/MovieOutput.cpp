#include "media/MovieOutput.h"

namespace vantry::libav {

namespace {

/// Divides into both pictures' and samples' times, so that a late track's empty edit is exact.
constexpr const char* movieTimescale = "720000";

} // namespace

void OutputDeleter::operator()(AVFormatContext* output) const
{
    if (!(output->flags & AVFMT_FLAG_CUSTOM_IO))
        avio_closep(&output->pb);
    avformat_free_context(output);
}

OutputPtr makeOutput(MovieFormat format, const std::string& url, const std::string& what)
{
    AVFormatContext* output = nullptr;
    check(avformat_alloc_output_context2(&output, nullptr, format == MovieFormat::Clip ? "mov" : "mp4", url.c_str()), what);
    return OutputPtr(output);
}

AVStream& addStream(AVFormatContext& output, const AVCodecParameters& parameters, AVRational timeBase)
{
    AVStream* stream = avformat_new_stream(&output, nullptr);
    if (!stream || avcodec_parameters_copy(stream->codecpar, &parameters) < 0)
        throw std::bad_alloc();
    stream->time_base = timeBase;
    stream->sample_aspect_ratio = parameters.sample_aspect_ratio;
    return *stream;
}

void writeHeader(AVFormatContext& output, MovieFormat format, const std::string& what)
{
    const auto set = [&](const char* option, const char* value) { check(av_opt_set(output.priv_data, option, value, 0), what); };
    set("movie_timescale", movieTimescale);
    if (format == MovieFormat::Publish) {
        set("use_editlist", "0");
        set("movflags", "+faststart+negative_cts_offsets");
    }
    check(avformat_write_header(&output, nullptr), what);
}

} // namespace vantry::libav
