#pragma once

#include "OmbrelRecord/AppModel/Disposal.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "OmbrelRecord/EditorModel/EditorParts.h"
#include "OmbrelRecord/EditorModel/OpenedRecording.h"
#include "OmbrelRecord/EditorModel/PreviewPicture.h"
#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Media/SoundOutput.h"
#include "RecordCore/Preview/Player.h"

#include <QtCore/QObject>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OmbrelRecord {

/// The editor's preview: the planned film, played by the engine's player at the size of its view. Films are
/// prepared on a thread of its own; of edits that follow one another quickly the last one is. Main thread.
class EditorPlayer : public QObject, public EditorPreview {
    Q_OBJECT

public:
    using Factory = std::function<std::unique_ptr<EditorPreview>(const OpenedRecording&)>;

    /// What to give as `EditorParts::makePreview`. Without `makeSound` the film plays silently. The threads
    /// of a preview that goes come to their end in the disposal.
    static Factory factory(std::shared_ptr<const RecordCore::MediaBackend> media,
                           RecordCore::SoundOutputFactory makeSound, Disposal* disposal = nullptr);

    EditorPlayer(std::shared_ptr<const RecordCore::MediaBackend> media, const OpenedRecording& recording,
                 RecordCore::SoundOutputFactory makeSound, Disposal* disposal = nullptr);
    ~EditorPlayer() override;

    void update(const RecordCore::Project& project, const RecordCore::Plan& plan,
                std::function<void()> shown) override;
    void play() override;
    void pause() override;
    void seek(double outputSeconds) override;
    PreviewPicture* picture() override { return &shownPicture; }

    /// Null before the first film is ready.
    const RecordCore::Player* player() const { return engine.get(); }

private:
    /// A film to be prepared.
    struct Request {
        RecordCore::Project project;
        RecordCore::Plan plan;
        double scale = 1;
    };
    /// A film that is ready, and the player that was made with it, if there was none.
    struct Prepared {
        Request request;
        RecordCore::Player::Film film;
        std::shared_ptr<RecordCore::Player> made;
        std::string failure;
    };
    /// What the player has told since the main thread looked last.
    struct News {
        std::optional<RecordCore::PreviewFrame> frame;
        std::optional<double> time;
        std::uint64_t timeSeek = 0;
        std::optional<bool> playing;
    };

    class Workshop;

    void prepare();
    void ready(Prepared& result, const std::vector<std::function<void()>>& told);
    double scaleFor(const RecordCore::Project& project) const;
    void hear(const News& heard);
    void show(const RecordCore::PreviewFrame& frame);

    PreviewPicture shownPicture;
    std::optional<Request> wanted;             ///< to be prepared when the one in work is
    std::optional<Request> current;            ///< given to the player, or in work
    std::vector<std::function<void()>> asking; ///< to be told about `wanted`
    std::optional<RecordCore::Plan> playing;   ///< the plan of the film that the player has
    bool preparing = false;
    std::optional<double> heldSeek; ///< in times of a film that is not ready yet
    std::optional<bool> heldPlay;
    std::uint64_t lastSeek = 0;
    std::shared_ptr<const RecordCore::PreviewImage> shownPixels;

    Mailbox mailbox;
    Disposal* disposal;
    std::shared_ptr<Workshop> workshop;
    std::shared_ptr<RecordCore::Player> engine;
    std::shared_ptr<SerialQueue> queue = std::make_shared<SerialQueue>();
};

} // namespace OmbrelRecord
