// Block decoding. Sizes come from the file: each is compared with the bytes that are there before it is used.
#include "viewer/readers/blocks.h"

#include <zlib.h>

#include "viewer/readers/numbers.h"

namespace nruview::readers {

namespace {

// Deflate's best case is 1032:1 (https://zlib.net/zlib_tech.html); a block that claims more is not one.
constexpr std::size_t kMaximumRatio = 1032;

int base64Value(char c) {
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    return c == '+' ? 62 : c == '/' ? 63 : -1;
}

/// The first size bytes of base64 text. Padding may stand between two encodings: a compressed block's header
/// is encoded on its own before the data.
std::string decodeBase64(std::string_view text, std::size_t size) {
    std::string bytes;
    bytes.reserve(size + 2);
    std::uint32_t group = 0;
    int digits = 0;
    int padding = 0;
    for (std::size_t i = 0; i < text.size() && bytes.size() < size; ++i) {
        const char c = text[i];
        if (c == ' ' || c == '\n' || c == '\r' || c == '\t')
            continue;
        const int value = c == '=' ? 0 : base64Value(c);
        if (value < 0 || (padding > 0 && c != '='))
            break;
        padding += c == '=' ? 1 : 0;
        group = group << 6 | static_cast<std::uint32_t>(value);
        if (++digits < 4)
            continue;
        for (int byte = 0; byte < 3 - padding; ++byte)
            bytes.push_back(static_cast<char>(group >> (16 - 8 * byte)));
        group = 0;
        digits = padding = 0;
    }
    if (bytes.size() < size)
        throw Refusal("ends inside its base64 data");
    bytes.resize(size);
    return bytes;
}

/// The first size bytes of a block; kept in store when they had to be decoded.
std::string_view firstBytes(std::string_view text, const BlockFormat& format, std::size_t size,
                            std::string& store) {
    if (size > text.size())
        throw Refusal("claims " + std::to_string(size) + " bytes where only " + std::to_string(text.size()) +
                      " are left");
    if (!format.base64)
        return text.substr(0, size);
    store = decodeBase64(text, size);
    return store;
}

std::size_t headerNumber(std::string_view header, const BlockFormat& format, std::size_t index) {
    const NumberType type = format.headerSize == 8 ? NumberType::UInt64 : NumberType::UInt32;
    const std::string_view bytes = header.substr(index * format.headerSize, format.headerSize);
    return static_cast<std::size_t>(decodeNumbers<std::int64_t>(bytes, type, format.bigEndian).front());
}

void checkSize(std::size_t claimed, std::size_t size) {
    if (claimed != size)
        throw Refusal("has " + std::to_string(claimed) + " bytes instead of " + std::to_string(size));
}

std::string decodePlain(std::string_view text, const BlockFormat& format, std::size_t size) {
    std::string store;
    checkSize(headerNumber(firstBytes(text, format, format.headerSize, store), format, 0), size);
    const std::string_view bytes = firstBytes(text, format, format.headerSize + size, store);
    return std::string(bytes.substr(format.headerSize));
}

/// The header of a compressed array: number of blocks, size of a block, size of the last one (0 = a whole
/// one), then the compressed size of each.
struct CompressedHeader {
    std::size_t blockSize = 0;
    std::size_t lastSize = 0;
    std::vector<std::size_t> compressed;
    std::size_t bytes = 0; ///< of the header itself

    std::size_t sizeOf(std::size_t block) const {
        return block + 1 == compressed.size() ? lastSize : blockSize;
    }
};

CompressedHeader readCompressedHeader(std::string_view text, const BlockFormat& format) {
    CompressedHeader header;
    std::string store;
    const std::size_t blocks = headerNumber(firstBytes(text, format, format.headerSize, store), format, 0);
    if (blocks > text.size() / format.headerSize)
        throw Refusal("claims " + std::to_string(blocks) +
                      " compressed blocks, more than the file could hold");
    header.bytes = (blocks == 0 ? 1 : 3 + blocks) * format.headerSize;
    const std::string_view bytes = firstBytes(text, format, header.bytes, store);
    if (blocks == 0)
        return header;
    header.blockSize = headerNumber(bytes, format, 1);
    header.lastSize = headerNumber(bytes, format, 2);
    if (header.lastSize == 0)
        header.lastSize = header.blockSize;
    for (std::size_t i = 0; i < blocks; ++i)
        header.compressed.push_back(headerNumber(bytes, format, 3 + i));
    return header;
}

/// Bytes of the compressed data; refuses sizes that contradict each other or the expected size.
std::size_t checkCompressed(const CompressedHeader& header, std::size_t available, std::size_t size) {
    std::size_t compressed = 0;
    std::size_t total = 0;
    for (std::size_t i = 0; i < header.compressed.size(); ++i) {
        if (header.compressed[i] > available - compressed)
            throw Refusal("has compressed blocks that reach past the end of the data");
        if (header.sizeOf(i) > size || header.sizeOf(i) / kMaximumRatio > header.compressed[i])
            throw Refusal("has a compressed block that claims an impossible size");
        compressed += header.compressed[i];
        total += header.sizeOf(i);
    }
    checkSize(total, size);
    return compressed;
}

std::string decodeCompressed(std::string_view text, const BlockFormat& format, std::size_t size) {
    const CompressedHeader header = readCompressedHeader(text, format);
    const std::size_t compressed =
        checkCompressed(header, text.size() - std::min(header.bytes, text.size()), size);
    std::string store;
    std::string_view input = firstBytes(text, format, header.bytes + compressed, store).substr(header.bytes);
    std::string result(size, '\0');
    std::size_t at = 0;
    for (std::size_t i = 0; i < header.compressed.size(); ++i) {
        uLongf length = header.sizeOf(i);
        const int status = uncompress(reinterpret_cast<Bytef*>(result.data() + at), &length,
                                      reinterpret_cast<const Bytef*>(input.data()), header.compressed[i]);
        if (status != Z_OK || length != header.sizeOf(i))
            throw Refusal("has damaged zlib data");
        input.remove_prefix(header.compressed[i]);
        at += length;
    }
    return result;
}

} // namespace

std::string decodeBlock(std::string_view text, const BlockFormat& format, std::size_t size) {
    return format.zlib ? decodeCompressed(text, format, size) : decodePlain(text, format, size);
}

} // namespace nruview::readers
