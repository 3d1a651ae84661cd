#include "RecordCore/Capture/PipeWire/PipeWireNodes.h"

#include "RecordCore/Capture/PipeWire/PipeWireFormat.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <pipewire/extensions/metadata.h>
#include <spa/pod/iter.h>

namespace RecordCore {

namespace {

std::string entry(const spa_dict* properties, const char* key) {
    const char* value = properties ? spa_dict_lookup(properties, key) : nullptr;
    return value ? value : "";
}

/// What the registry told.
struct Listing {
    pw_registry* registry = nullptr;
    std::vector<PipeWireCameraNode> cameras;
    PipeWireHandle<pw_proxy> metadata; ///< holds the session's defaults
    spa_hook metadataListener{};
    std::string standard; ///< name of the default camera
};

void listGlobal(void* user, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                const spa_dict* properties) {
    auto& listing = *static_cast<Listing*>(user);
    if (std::strcmp(type, PW_TYPE_INTERFACE_Node) == 0) {
        const std::string role = entry(properties, PW_KEY_MEDIA_ROLE);
        if (entry(properties, PW_KEY_MEDIA_CLASS) != "Video/Source" || (!role.empty() && role != "Camera"))
            return;
        PipeWireCameraNode node;
        node.id = id;
        node.serial = entry(properties, PW_KEY_OBJECT_SERIAL);
        node.name = entry(properties, PW_KEY_NODE_NAME);
        node.description = entry(properties, PW_KEY_NODE_DESCRIPTION);
        if (node.description.empty()) node.description = entry(properties, PW_KEY_NODE_NICK);
        if (node.description.empty()) node.description = node.name;
        node.priority = std::atoi(entry(properties, PW_KEY_PRIORITY_SESSION).c_str());
        listing.cameras.push_back(std::move(node));
    } else if (std::strcmp(type, PW_TYPE_INTERFACE_Metadata) == 0 && !listing.metadata &&
               entry(properties, PW_KEY_METADATA_NAME) == "default") {
        listing.metadata.reset(static_cast<pw_proxy*>(
            pw_registry_bind(listing.registry, id, PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA, 0)));
        if (!listing.metadata) return;
        static const pw_metadata_events events = [] {
            pw_metadata_events e{};
            e.version = PW_VERSION_METADATA_EVENTS;
            e.property = [](void* owner, std::uint32_t, const char* key, const char*, const char* value) {
                if (!key || !value || std::strcmp(key, "default.video.source") != 0) return 0;
                const auto json = nlohmann::json::parse(value, nullptr, false);
                if (json.is_object() && json.contains("name") && json["name"].is_string())
                    static_cast<Listing*>(owner)->standard = json["name"].get<std::string>();
                return 0;
            };
            return e;
        }();
        pw_metadata_add_listener(reinterpret_cast<pw_metadata*>(listing.metadata.get()),
                                 &listing.metadataListener, &events, &listing);
    }
}

} // namespace

std::vector<PipeWireCameraNode> pipeWireCameras(PipeWireLoop& loop) {
    const PipeWireLoop::Lock lock(loop);
    Listing listing;
    const PipeWireHandle<pw_proxy> registry(
        reinterpret_cast<pw_proxy*>(pw_core_get_registry(loop.core(), PW_VERSION_REGISTRY, 0)));
    if (!registry) return {};
    listing.registry = reinterpret_cast<pw_registry*>(registry.get());
    spa_hook hook{};
    pw_registry_events events{};
    events.version = PW_VERSION_REGISTRY_EVENTS;
    events.global = listGlobal;
    pw_registry_add_listener(listing.registry, &hook, &events, &listing);
    loop.roundTrip(); // the objects
    loop.roundTrip(); // the defaults, asked for while the objects came
    spa_hook_remove(&hook);
    if (listing.metadata) spa_hook_remove(&listing.metadataListener);

    const auto first = [&](const PipeWireCameraNode& a, const PipeWireCameraNode& b) {
        const bool aStandard = a.name == listing.standard;
        const bool bStandard = b.name == listing.standard;
        return aStandard != bStandard ? aStandard : a.priority > b.priority;
    };
    std::stable_sort(listing.cameras.begin(), listing.cameras.end(), first);
    return std::move(listing.cameras);
}

std::vector<CameraMode> pipeWireCameraModes(PipeWireLoop& loop, std::uint32_t node) {
    const PipeWireLoop::Lock lock(loop);
    const PipeWireHandle<pw_proxy> registry(
        reinterpret_cast<pw_proxy*>(pw_core_get_registry(loop.core(), PW_VERSION_REGISTRY, 0)));
    if (!registry) return {};
    const PipeWireHandle<pw_proxy> proxy(static_cast<pw_proxy*>(pw_registry_bind(
        reinterpret_cast<pw_registry*>(registry.get()), node, PW_TYPE_INTERFACE_Node, PW_VERSION_NODE, 0)));
    if (!proxy) return {};
    std::vector<CameraMode> modes;
    spa_hook hook{};
    pw_node_events events{};
    events.version = PW_VERSION_NODE_EVENTS;
    events.param = [](void* user, int, std::uint32_t id, std::uint32_t, std::uint32_t, const spa_pod* param) {
        if (id == SPA_PARAM_EnumFormat && param)
            addCameraModes(*param, *static_cast<std::vector<CameraMode>*>(user));
    };
    pw_node_add_listener(reinterpret_cast<pw_node*>(proxy.get()), &hook, &events, &modes);
    pw_node_enum_params(reinterpret_cast<pw_node*>(proxy.get()), 0, SPA_PARAM_EnumFormat, 0, UINT32_MAX,
                        nullptr);
    loop.roundTrip();
    spa_hook_remove(&hook);
    return modes;
}

} // namespace RecordCore
