// String routines on arbitrary text and buffer sizes: no read or write outside a buffer.
#include <zbBase/diagnostics/CzbString.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using zbBase::CzbString;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) {
        return 0;
    }
    // Two bytes of sizes and positions, then up to three texts separated by NUL bytes.
    int dstSize = data[0] % 40;
    int number = static_cast<int>(data[1] % 40) - 2;
    int start = static_cast<int>(data[2] % 40) - 2;
    char c = static_cast<char>(data[3]);
    std::string rest(reinterpret_cast<const char*>(data + 4), size - 4);
    std::vector<std::string> parts;
    size_t from = 0;
    while (parts.size() < 3) {
        size_t end = rest.find('\0', from);
        parts.push_back(rest.substr(from, end == std::string::npos ? end : end - from));
        if (end == std::string::npos) {
            break;
        }
        from = end + 1;
    }
    while (parts.size() < 3) {
        parts.push_back("");
    }
    // Exactly sized copies, so that a read past a text is caught.
    std::vector<std::vector<char>> texts;
    for (const auto& part : parts) {
        texts.emplace_back(part.begin(), part.end());
        texts.back().push_back('\0');
    }
    char* a = texts[0].data();
    char* b = texts[1].data();
    char* d = texts[2].data();
    std::vector<char> dst(static_cast<size_t>(dstSize > 0 ? dstSize : 1), '\0');

    CzbString::Find(a, c);
    CzbString::Find(a, b);
    CzbString::ReverseFind(a, c);
    CzbString::StringFind(a, b);
    CzbString::Left(a, dst.data(), dstSize, number);
    CzbString::Right(a, dst.data(), dstSize, number);
    CzbString::Mid(a, dst.data(), dstSize, start, number);
    CzbString::GetExt(a);
    CzbString::GetExt(dst.data(), dstSize, a);
    CzbString::GetName(dst.data(), dstSize, a);
    CzbString::GetPath(dst.data(), dstSize, a);
    CzbString::GetFullPathName(dst.data(), dstSize, a, b);
    CzbString::IsNumber(a);
    CzbString::ToWString(a);
    CzbString::ToString(std::wstring(parts[1].begin(), parts[1].end()));

    std::vector<char> text(512, '\0');
    std::memcpy(text.data(), a, std::min<size_t>(std::strlen(a), 511));
    CzbString::StringReplace(text.data(), b, d);
    CzbString::StringReplace(text.data(), c, 'x');
    CzbString::MakeLower(text.data());
    CzbString::MakeUpper(text.data());
    return 0;
}
