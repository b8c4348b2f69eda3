// Two ways to change what plays while it plays: docs/live.md tells of them.

#pragma once

#include <animationmodel/play.h>

#include <memory>
#include <mutex>

// The page begins here.
/// What `track` of a show sends while an alert plays: the alert's value for the same layer, if it
/// has one on its frame.
inline std::optional<float> value_under(const Kiv::Player& alert, const Kiv::Track& track) {
    for (const Kiv::Track& over : alert)
        if (over.name() == track.name() && over.value())
            return over.value();
    return track.value();
}

/// An animation that nobody changes any more, with its tracks.
struct Scene {
    explicit Scene(Kiv::Animation given)
        : show(std::make_shared<const Kiv::Animation>(std::move(given))), player(show->layers) {}

    std::shared_ptr<const Kiv::Animation> show;
    Kiv::Player player;
};

/// Hands scenes from the thread that edits to the thread that plays.
class Handover {
public:
    /// From the editor: `next` plays from the next frame on. What it takes the place of is freed
    /// here, by the editor.
    void offer(std::unique_ptr<Scene> next) {
        const std::lock_guard lock(mutex);
        scene.swap(next);
        fresh = true;
    }

    /// From the player, before each frame: takes the scene that was offered last, if there is a new
    /// one and the editor is not just offering another. Waits for nothing, allocates and frees
    /// nothing: the scene that played before is left for the editor.
    bool take(std::unique_ptr<Scene>& playing) {
        const std::unique_lock lock(mutex, std::try_to_lock);
        if (!lock || !fresh)
            return false;
        scene.swap(playing);
        fresh = false;
        return true;
    }

private:
    std::mutex mutex;
    std::unique_ptr<Scene> scene;
    bool fresh = false;
};
// The page goes on in live.cpp.
