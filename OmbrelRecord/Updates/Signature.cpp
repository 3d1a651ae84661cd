#include "OmbrelRecord/Updates/Signature.h"

#include <gnutls/abstract.h>
#include <gnutls/gnutls.h>
#include <memory>

namespace OmbrelRecord {

namespace {

gnutls_datum_t datum(std::string_view bytes) {
    // The library reads it only.
    return {reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())),
            static_cast<unsigned>(bytes.size())};
}

struct FreeKey {
    void operator()(gnutls_pubkey_t key) const { gnutls_pubkey_deinit(key); }
};

} // namespace

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

} // namespace OmbrelRecord
