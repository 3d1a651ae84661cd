#include "OmbrelRecord/Updates/UpdateFeed.h"

#include "RecordCore/Model/RecordingError.h"

#include <QtCore/QByteArray>
#include <charconv>
#include <fmt/format.h>
#include <gnutls/abstract.h>
#include <gnutls/gnutls.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace OmbrelRecord {

using RecordCore::RecordingError;

namespace {

std::optional<std::vector<unsigned>> numbers(std::string_view version) {
    std::vector<unsigned> list;
    for (;;) {
        const std::size_t end = std::min(version.find('.'), version.size());
        unsigned number = 0;
        const auto [last, error] = std::from_chars(version.data(), version.data() + end, number);
        if (error != std::errc() || last != version.data() + end) return std::nullopt;
        list.push_back(number);
        if (end == version.size()) return list;
        version.remove_prefix(end + 1);
    }
}

gnutls_datum_t datum(std::string_view bytes) {
    // The library reads it only.
    return {reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())),
            static_cast<unsigned>(bytes.size())};
}

struct FreeKey {
    void operator()(gnutls_pubkey_t key) const { gnutls_pubkey_deinit(key); }
};

} // namespace

Release Release::read(std::string_view feed) {
    try {
        const auto json = nlohmann::json::parse(feed);
        Release release{json.at("version"), json.at("url"), json.value("notes", "")};
        if (!numbers(release.version))
            throw RecordingError(fmt::format("update feed: \"{}\" is no version", release.version));
        if (!release.url.starts_with("https://"))
            throw RecordingError(fmt::format("update feed: {} is no page", release.url));
        return release;
    } catch (const nlohmann::json::exception& error) {
        throw RecordingError(fmt::format("update feed: {}", error.what()));
    }
}

bool isNewer(std::string_view version, std::string_view than) {
    auto a = numbers(version);
    auto b = numbers(than);
    if (!a || !b) return false;
    const std::size_t length = std::max(a->size(), b->size());
    a->resize(length);
    b->resize(length);
    return *a > *b;
}

bool isSigned(std::string_view bytes, std::string_view signature, std::string_view publicKey) {
    if (publicKey.size() != 32 || signature.size() != 64) return false;
    gnutls_pubkey_t raw = nullptr;
    if (gnutls_pubkey_init(&raw) != GNUTLS_E_SUCCESS) return false;
    const std::unique_ptr<gnutls_pubkey_st, FreeKey> key(raw);
    const gnutls_datum_t point = datum(publicKey), message = datum(bytes), proof = datum(signature);
    return gnutls_pubkey_import_ecc_raw(key.get(), GNUTLS_ECC_CURVE_ED25519, &point, nullptr) ==
               GNUTLS_E_SUCCESS &&
           gnutls_pubkey_verify_data2(key.get(), GNUTLS_SIGN_EDDSA_ED25519, 0, &message, &proof) >= 0;
}

std::string fromBase64(std::string_view text) {
    const QByteArray bytes(text.data(), static_cast<qsizetype>(text.size()));
    const auto result =
        QByteArray::fromBase64Encoding(bytes.trimmed(), QByteArray::AbortOnBase64DecodingErrors);
    return result ? result.decoded.toStdString() : std::string();
}

} // namespace OmbrelRecord
