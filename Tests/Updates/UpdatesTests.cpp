#include "OmbrelRecord/Updates/Signature.h"
#include "OmbrelRecord/Updates/Updates.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/TemporaryFolder.h"

#include <QtCore/QCoreApplication>
#include <gtest/gtest.h>

namespace {

using namespace OmbrelRecord;
using RecordCore::writeFileAtomically;
using State = Updates::State;

// Signed with the private half of the key by another program (OpenSSL).
constexpr auto key = "p7Q3gRZGAMqEDe1WcomtG+SL9JdBY8J9QOIA0kLfbKA=";
constexpr auto feed =
    "{\"version\": \"0.2.0\", \"url\": \"https://example.org/0.2.0\", \"notes\": \"Wayland.\"}\n";
constexpr auto feedSignature =
    "5lJA50R2qifB7IrPJKKoTtFw+N+KteaaXk378Y2taymBxO7fgk9k2ZJdnPHAQEUQwcn+VFnc1L2kqT0i9gK8CA==";
constexpr auto oddFeed = "{\"version\": \"0.3.0\", \"url\": \"ftp://example.org/x\"}\n";
constexpr auto oddSignature =
    "rGmHK3mCYyiwNpSNJwaCTbC83aol6ofZqieJTLMKXrdfDs1Fo/v4QRwMR1zts3MTTcruK6WObXuLSZgVHucfDA==";

TEST(Updates, OnlyASignedFeedOfALaterReleaseIsAnUpdate) {
    const struct {
        const char* name;
        std::string feed;
        std::string signature;
        std::string key;
        std::string program;
        State state;
    } cases[]{
        {"later", feed, feedSignature, key, "0.1.9", State::available},
        {"the same", feed, feedSignature, key, "0.2", State::current},
        {"earlier", feed, feedSignature, key, "0.10.0", State::current},
        {"one byte more", std::string(feed) + " ", feedSignature, key, "0.1.0", State::failed},
        {"another feed's signature", feed, oddSignature, key, "0.1.0", State::failed},
        {"no signature", feed, "", key, "0.1.0", State::failed},
        {"signed by somebody else", feed, feedSignature,
         "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=", "0.1.0", State::failed},
        {"signed, but no page", oddFeed, oddSignature, key, "0.1.0", State::failed},
        {"too long", std::string(100'000, ' '), feedSignature, key, "0.1.0", State::failed},
        {"a build without a key", feed, feedSignature, "", "0.1.0", State::off},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        const TemporaryFolder folder;
        writeFileAtomically(folder / "feed.json", test.feed);
        writeFileAtomically(folder / "feed.json.sig", test.signature);
        Updates updates({QUrl::fromLocalFile(QString::fromStdString((folder / "feed.json").string())),
                         fromBase64(test.key), test.program},
                        isSigned);
        updates.check();
        while (updates.state() == State::checking)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        EXPECT_EQ(updates.state(), test.state) << updates.failure().toStdString();
        EXPECT_EQ(updates.failure().isEmpty(), test.state != State::failed);
        if (test.state == State::available) {
            EXPECT_EQ(updates.version(), QStringLiteral("0.2.0"));
            EXPECT_EQ(updates.page(), QUrl(QStringLiteral("https://example.org/0.2.0")));
        }
    }
}

TEST(Updates, NobodyIsAskedInTheClear) {
    Updates updates({QUrl(QStringLiteral("http://localhost/feed.json")), fromBase64(key), "0.1.0"}, isSigned);
    updates.check();
    EXPECT_EQ(updates.state(), State::failed);
}

TEST(Updates, VersionsAreNumbers) {
    EXPECT_TRUE(isNewer("1.10", "1.9.9"));
    EXPECT_TRUE(isNewer("1.0.1", "1"));
    EXPECT_FALSE(isNewer("1.0", "1"));
    for (const char* odd : {"", "1.", "v2", "1.2-rc1", "99999999999999999999"}) {
        EXPECT_FALSE(isNewer(odd, "0.1")) << odd;
        EXPECT_FALSE(isNewer("2", odd)) << odd;
    }
}

} // namespace
