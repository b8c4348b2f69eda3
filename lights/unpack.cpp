#include "unpack.h"

#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#ifdef LIGHTS_HAVE_ZSTD

#include <zstd.h>

void unpack_zstd(const Source& source, const Sink& sink, std::uint64_t memory) {
    const std::unique_ptr<ZSTD_DStream, decltype(&ZSTD_freeDStream)> stream(ZSTD_createDStream(),
                                                                            ZSTD_freeDStream);
    int window = 25; // the logarithm of the most that a frame may refer back to
    while (window < 27 && (std::uint64_t{2} << window) <= memory)
        ++window;
    ZSTD_DCtx_setParameter(stream.get(), ZSTD_d_windowLogMax, window);
    std::vector<std::uint8_t> unpacked(ZSTD_DStreamOutSize());
    std::size_t expected = 0; // 0 where a frame is complete
    for (Piece packed = source(); !packed.empty(); packed = source()) {
        ZSTD_inBuffer in{packed.data(), packed.size(), 0};
        bool full = false;
        while (in.pos < in.size || (full && expected != 0)) {
            ZSTD_outBuffer out{unpacked.data(), unpacked.size(), 0};
            expected = ZSTD_decompressStream(stream.get(), &out, &in);
            if (ZSTD_isError(expected) != 0)
                throw std::runtime_error(ZSTD_getErrorName(expected));
            sink({unpacked.data(), out.pos});
            full = out.pos == out.size;
        }
    }
    if (expected != 0)
        throw std::runtime_error("it ends inside a frame of zstd");
}

#else

void unpack_zstd(const Source& /*source*/, const Sink& /*sink*/, std::uint64_t /*memory*/) {
    throw std::runtime_error("this lightshow was built without libzstd, which unpacks it");
}

#endif
#ifdef LIGHTS_HAVE_ZLIB

#include <zlib.h>

void unpack_zlib(const Source& source, const Sink& sink) {
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        throw std::bad_alloc();
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> end(&stream, inflateEnd);
    std::vector<std::uint8_t> unpacked(std::size_t{1} << 17);
    int state = Z_OK;
    for (Piece packed = source(); !packed.empty(); packed = source()) {
        stream.next_in = const_cast<std::uint8_t*>(packed.data()); // which it only reads
        stream.avail_in = static_cast<unsigned int>(packed.size());
        bool full = false;
        while (stream.avail_in > 0 || (full && state == Z_OK)) {
            if (state == Z_STREAM_END)
                throw std::runtime_error("more follows the stream of zlib");
            stream.next_out = unpacked.data();
            stream.avail_out = static_cast<unsigned int>(unpacked.size());
            state = inflate(&stream, Z_NO_FLUSH);
            if (state == Z_BUF_ERROR) // all of the piece was unpacked before
                state = Z_OK;
            if (state != Z_OK && state != Z_STREAM_END)
                throw std::runtime_error(stream.msg != nullptr ? stream.msg : "it is broken");
            full = stream.avail_out == 0;
            sink({unpacked.data(), unpacked.size() - stream.avail_out});
        }
    }
    if (state != Z_STREAM_END)
        throw std::runtime_error("it ends inside the stream of zlib");
}

#else

void unpack_zlib(const Source& /*source*/, const Sink& /*sink*/) {
    throw std::runtime_error("this lightshow was built without zlib, which unpacks it");
}

#endif
