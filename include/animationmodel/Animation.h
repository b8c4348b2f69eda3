#pragma once

#include <animationmodel/AnimationKey.h>
#include <animationmodel/export.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Kiv {

/// Layers by name, in byte-wise order of the names.
using LayerMap = std::map<std::string, KeyVector>;

/// Named layers of keys that play side by side from frame 0, one layer per output channel.
///
///     a | A A A A | B B B B B B |     the duration is that of the longest layer: 10 frames
///     b | C C C C C C | ~ ~ ~ ~ |     ~ a Wait key that fills a shorter layer
///       | intro|         | outro|     introSize 3 from the start, outroSize 3 from the end
///       0      3         7      10    ranges are half-open: the outro is frames 7, 8 and 9
///
/// Frames are whole numbers, counted from 0; `fps` is in frames per second; values are floats.
///
/// A constructor that takes layers fills the shorter ones up to the duration D with one `Wait` key
/// each and then checks, in this order and throwing std::invalid_argument: that the frame rate is
/// not 0 or less (a NaN passes), that each layer lasts less than 2^31 frames, that `introSize` and
/// `outroSize` are each at most D, and that they do not overlap. Editing does not do so for the
/// animation that is edited: afterwards layers may differ in length and the sizes may no longer
/// fit, until the next copy fills and checks again.
///
/// Every edit either succeeds or leaves the animation as it was, running out of memory
/// (std::bad_alloc) included. Arguments may be parts of the animation itself: they count as they
/// were before the call. Frames are added as unsigned 32-bit numbers; keep layers below 2^31
/// frames.
///
/// Edits may leave an `outroSize` that is greater than the duration. Such an outro begins past
/// every frame: `insert` and `remove` leave its size, `pushBack` drops nothing for it, and splits
/// mark nothing with it. For `outroStartFrame()` and `introBodyOutroLayers` it begins at 0. An
/// `introSize` that is greater than the duration marks no piece of a split either.
///
/// Costs are said in keys: the time of an operation grows as the number of keys that it reads and
/// writes. Where it has to know what the layers last before it begins, it reads them twice.
///
/// Memory is not allocated for single keys, but for those of a layer together. An operation
/// allocates:
///
///     a question        nothing; `layer` a list of keys
///     one layer         once at most, and an entry for a layer that is created
///     all layers        once at most for each layer, an entry for each one created, and lists
///     new layers        once for each and an entry, again for one that is filled and for one that
///                       is cut, and lists
///
/// There are up to four lists, with an item for each layer: its length, or its edit. Splitting
/// also has lists of its cuts and of its pieces, and `loop` one of the keys that it repeats. Keys
/// in braces, and a single key that overrides, are a list of their own. A layer that has to grow
/// takes up to twice its size. While an operation runs, the layers exist as they were and as they
/// will be. An argument that is taken by value is a copy of its own, unless it is moved in; layers
/// of it that have to be filled allocate once more.
///
/// Distinct animations share nothing but `defaultFps`. Const operations may run at the same time.
class ANIMATIONMODEL_EXPORT Animation {
    /// What stands in braces: a name and its keys. The name is of any type that converts to one, so
    /// that it cannot be in braces itself.
    struct NamedLayer : LayerMap::value_type {
        template <class Name,
                  class = std::enable_if_t<std::is_convertible_v<const Name&, std::string>>>
        NamedLayer(const Name& name, const KeyVector& keys) : pair(name, keys) {}
    };

public:
    /// The frame rate, 25 at first, that `reset()` and the constructors without another one take.
    /// Not synchronised: change it while no other thread constructs, resets or loops.
    static float defaultFps;

    /// No layers. Throws std::invalid_argument if `defaultFps` is 0 or less.
    Animation();

    /// No layers, at `fps` frames per second. Throws std::invalid_argument if it is 0 or less.
    explicit Animation(float fps);

    /// Copies of `layers`, without intro and outro, at `defaultFps`. Fills and checks.
    Animation(const LayerMap& layers);

    /// The same with layers in braces, `Animation({{"lamp", keys}})`. `{}` stands for no layers.
    Animation(std::initializer_list<NamedLayer> given)
        : Animation(LayerMap(given.begin(), given.end())) {}

    /// Copies of `layers` with an intro and an outro of so many frames. Fills and checks.
    Animation(const LayerMap& layers, unsigned int introSize, unsigned int outroSize);

    /// A copy of everything, which it then fills and checks. Never throws std::invalid_argument
    /// for an animation as constructed; may do so for an edited one.
    Animation(const Animation& other);
    /// The value exactly as it is, neither filled nor checked. `other` is left without layers, with
    /// sizes 0.
    Animation(Animation&& other) noexcept;
    /// Like the copy constructor; unchanged if that throws.
    Animation& operator=(const Animation& other);
    /// Like the move constructor.
    Animation& operator=(Animation&& other) noexcept;
    virtual ~Animation();

    friend void swap(Animation& a, Animation& b) noexcept {
        a.layers.swap(b.layers);
        std::swap(a.introSize, b.introSize);
        std::swap(a.outroSize, b.outroSize);
        std::swap(a.fps, b.fps);
    }

    /// \name Questions
    /// @{

    /// A copy of the keys of a layer; `animation.layer(name).push_back(key)` changes the copy
    /// alone. To change the layer use the operations below, or take it from `layers`:
    /// `animation.layers.at(name)[0].duration = 5`.
    /// Throws std::invalid_argument, naming it, if there is no layer of that name.
    [[nodiscard]] KeyVector layer(const std::string& name) const;

    /// Whether there is a layer of that name, even an empty one.
    [[nodiscard]] bool hasLayer(const std::string& name) const;

    /// Whether no layer holds a key.
    [[nodiscard]] bool empty() const;

    /// Frames of the longest layer; 0 without keys. Costs all keys.
    [[nodiscard]] unsigned int durationInFrames() const;
    /// Frames of the longest of `layers`; 0 without keys.
    [[nodiscard]] static unsigned int durationInFramesOf(const LayerMap& layers);
    /// Frames of one layer; 0 if it is empty.
    [[nodiscard]] static unsigned int durationInFramesOf(const KeyVector& layer);
    /// The same for keys in braces; `{}` stands for no keys.
    [[nodiscard]] static unsigned int
    durationInFramesOf(std::initializer_list<AnimationKey> layer) {
        return durationInFramesOf(KeyVector(layer));
    }

    /// The first frame of the outro: the duration minus `outroSize`. Without an outro that is the
    /// duration itself; 0 if the outro is longer than the animation. Costs all keys.
    [[nodiscard]] unsigned int outroStartFrame() const;

    /// Seconds at `fps`, as an absolute value. An `fps` of 0 gives infinity, or NaN without keys.
    [[nodiscard]] float durationInSeconds() const;

    /// Seconds at another frame rate, which may be NaN.
    /// Throws std::invalid_argument if it is 0 or less.
    [[nodiscard]] float simulatedDurationInSeconds(float fps) const;

    /// @}
    /// \name Editing one layer
    /// A layer that is missing is created where nothing else is said. `introSize`, `outroSize` and
    /// `fps` stay as they are, wherever frames are inserted or removed.
    /// @{

    /// Appends one `Wait` key that makes the layer last `frames` frames.
    ///
    ///     before  | A A A A |                          fillInLayer("led", 7)
    ///     after   | A A A A | ~ ~ ~ |
    ///
    /// Nothing happens to a layer that lasts as long or longer; with 0 frames a missing one is
    /// created empty. Costs the keys of the layer.
    void fillInLayer(const std::string& name, unsigned int frames);

    /// Puts `keys` in the place of the frames [start, start + count); what lay after them follows.
    ///
    ///     before  | A A A A | B B B B B B |            replaceInLayer("led", 2, 5, X(3))
    ///     after   | A A | X X X | B B B |
    ///
    /// This leaves exactly what `removeInLayer(name, start, count)` and then
    /// `insertInLayer(name, keys, start)` would, in one walk that succeeds or changes nothing. Keys
    /// that the range begins or ends inside are cut there. `Wait` keys replace like all others.
    ///
    /// With a `count` of the total of `keys`, everything after them stays in its place:
    ///
    ///     before  | A A A A | B B B B B B |            replaceInLayer("led", 2, 3, X(3))
    ///     after   | A A | X X X | B B B B B |
    ///
    /// A range that reaches past the end, or past 2^32 - 1, goes to the end. If the layer ends
    /// before `start`, one `Wait` key fills it up to there first. Without `keys` nothing is filled;
    /// a missing layer is created empty, and with a `count` of 0 the key that `start` falls inside
    /// is cut all the same. Costs the keys up to the range's end, and those that move or come in.
    void replaceInLayer(const std::string& name, unsigned int start, unsigned int count,
                        const KeyVector& keys);
    /// The same with one key.
    void replaceInLayer(const std::string& name, unsigned int start, unsigned int count,
                        const AnimationKey& key);
    /// The same with keys in braces; `{}` stands for no keys.
    void replaceInLayer(const std::string& name, unsigned int start, unsigned int count,
                        std::initializer_list<AnimationKey> keys) {
        replaceInLayer(name, start, count, KeyVector(keys));
    }
    /// The same with one key of `duration` frames. Throws std::invalid_argument where the
    /// constructors of its command and of the key do.
    void replaceInLayer(const std::string& name, unsigned int start, unsigned int count,
                        AnimationKeyCommandEffect effect, const std::vector<float>& args,
                        unsigned int duration) {
        replaceInLayer(name, start, count, AnimationKey({effect, args}, duration));
    }
    /// The same with arguments in braces; `{}` stands for no arguments.
    void replaceInLayer(const std::string& name, unsigned int start, unsigned int count,
                        AnimationKeyCommandEffect effect, std::initializer_list<float> args,
                        unsigned int duration) {
        replaceInLayer(name, start, count, AnimationKey({effect, args}, duration));
    }

    /// Inserts `keys` at `frame`; what stood there follows them.
    ///
    ///     before  | A A A A | B B B B B B |            insertInLayer("led", X(3), 6)
    ///     after   | A A A A | B B | X X X | B B B B |
    ///
    /// At frame 0 and on a boundary no key is cut. Past the end one `Wait` key fills the layer up
    /// to `frame` first. Without `keys` nothing happens, and no layer is created.
    /// Costs the keys of the layer up to `frame` and those that move or are inserted.
    void insertInLayer(const std::string& name, const KeyVector& keys, unsigned int frame);
    /// The same with one key.
    void insertInLayer(const std::string& name, const AnimationKey& key, unsigned int frame);
    /// The same with keys in braces; `{}` stands for no keys.
    void insertInLayer(const std::string& name, std::initializer_list<AnimationKey> keys,
                       unsigned int frame) {
        insertInLayer(name, KeyVector(keys), frame);
    }
    /// The same with one key of `duration` frames. Throws std::invalid_argument where the
    /// constructors of its command and of the key do.
    void insertInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                       const std::vector<float>& args, unsigned int duration, unsigned int frame);
    /// The same with arguments in braces; `{}` stands for no arguments.
    void insertInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                       std::initializer_list<float> args, unsigned int duration,
                       unsigned int frame);

    /// Appends `keys` at the end of the layer.
    ///
    ///     before  | A A A A |                          pushBackInLayer("led", X(3))
    ///     after   | A A A A | X X X |
    ///
    /// The layer is created even without keys. Costs the keys appended; the layer grows as a
    /// std::vector does.
    void pushBackInLayer(const std::string& name, const KeyVector& keys);
    /// The same with one key.
    void pushBackInLayer(const std::string& name, const AnimationKey& key);
    /// The same with keys in braces; `{}` stands for no keys.
    void pushBackInLayer(const std::string& name, std::initializer_list<AnimationKey> keys) {
        pushBackInLayer(name, KeyVector(keys));
    }
    /// The same with one key of `duration` frames. Throws std::invalid_argument where the
    /// constructors of its command and of the key do.
    void pushBackInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                         const std::vector<float>& args, unsigned int duration);
    /// The same with arguments in braces; `{}` stands for no arguments.
    void pushBackInLayer(const std::string& name, AnimationKeyCommandEffect effect,
                         std::initializer_list<float> args, unsigned int duration);

    /// Takes the frames [start, start + count) out of the layer; what lay after them moves up.
    ///
    ///     before  | A A A A | B B B B B B |            removeInLayer("led", 2, 5)
    ///     after   | A A | B B B |
    ///
    /// A range that reaches past the end, or past 2^32 - 1, goes to the end. A `start` at or past
    /// the end changes nothing; a missing layer is created empty. A `count` of 0 removes no frame,
    /// but still cuts the key that `start` falls inside.
    /// Costs the keys up to the range's end and those that move.
    void removeInLayer(const std::string& name, unsigned int start, unsigned int count);

    /// Lays `keys` over the layer from `frame` on; where they are `Wait`, the layer shows through.
    ///
    ///     before  | A A A A | B B B B B B | C C C C C |
    ///     keys    | ~ ~ ~ ~ | X X X X X X |              overrideLayerWith("led", keys, 0)
    ///     after   | A A A A | X X X X X X | C C C C C |
    ///
    /// First one `Wait` key fills the layer up to the duration of the animation, or up to the total
    /// of `keys` if that is longer. Without `keys` that is all.
    ///
    /// Then each run of keys other than `Wait` is laid in its place. The key of the layer that the
    /// run begins inside is cut there. From there on, keys that end by the run's end are gone. The
    /// key that the run ends inside is not cut: it follows the run whole.
    ///
    ///     before  | A A A A | B B B B B B |            overrideLayerWith("led", X(3), 2)
    ///     after   | A A | X X X | B B B B B B |
    ///             0     2       5             11
    ///
    /// Here X begins inside A and ends inside B, whose first frame it covers. All of B plays after
    /// X, a frame later than before, and the layer lasts a frame longer. To keep B in its place,
    /// cut it at the run's end beforehand:
    ///
    ///     removeInLayer("led", 5, 0)           | A A A A | B | B B B B B |
    ///     overrideLayerWith("led", X(3), 2)    | A A | X X X | B B B B B |
    ///
    /// A run that begins past the end begins there all the same, after one more `Wait` key.
    /// Costs all keys of the animation, to find its duration, and those of `keys`.
    void overrideLayerWith(const std::string& name, const KeyVector& keys, unsigned int frame);
    /// The same with one key.
    void overrideLayerWith(const std::string& name, const AnimationKey& key, unsigned int frame) {
        overrideLayerWith(name, KeyVector{key}, frame);
    }
    /// The same with keys in braces; `{}` stands for no keys.
    void overrideLayerWith(const std::string& name, std::initializer_list<AnimationKey> keys,
                           unsigned int frame) {
        overrideLayerWith(name, KeyVector(keys), frame);
    }
    /// The same with one key of `duration` frames. Throws std::invalid_argument where the
    /// constructors of its command and of the key do.
    void overrideLayerWith(const std::string& name, AnimationKeyCommandEffect effect,
                           const std::vector<float>& args, unsigned int duration,
                           unsigned int frame) {
        overrideLayerWith(name, AnimationKey({effect, args}, duration), frame);
    }
    /// The same with arguments in braces; `{}` stands for no arguments.
    void overrideLayerWith(const std::string& name, AnimationKeyCommandEffect effect,
                           std::initializer_list<float> args, unsigned int duration,
                           unsigned int frame) {
        overrideLayerWith(name, AnimationKey({effect, args}, duration), frame);
    }

    /// @}
    /// \name Editing all layers
    /// `fps` stays as it is, and layers are not filled afterwards. The frame rate of another
    /// animation plays no part: its frames are taken as they are.
    /// @{

    /// Puts `other` in the place of the frames [start, start + count) of every layer, as
    /// `replaceInLayer` does.
    ///
    ///     before  L | A A A A A A |         replace(2, 3, M = Y(2))
    ///     after   L | A A | ~ ~ | A |
    ///             M | ~ ~ | Y Y |
    ///
    /// This leaves exactly what `remove(start, count)` and then `insert(other, start)` would, sizes
    /// included, but succeeds or changes nothing. So a layer that `other` lacks gets a `Wait` key
    /// in the place of the range: to replace frames of some layers alone, call `replaceInLayer` for
    /// each of them.
    ///
    /// An `other` without keys only removes the range; with a `count` of 0 it changes nothing, and
    /// cuts nothing either. `other` is filled and checked like a copy; what that throws leaves this
    /// animation unchanged. Costs all keys of both.
    void replace(unsigned int start, unsigned int count, Animation other);

    /// Inserts `other` at `frame` into every layer, as `insertInLayer` does.
    ///
    ///     before  L | A A A A A A |         insert(M = Y(3), 4)
    ///     after   L | A A A A | ~ ~ ~ | A A |
    ///             M | ~ ~ ~ ~ | Y Y Y |
    ///
    /// A layer that `other` lacks gets a `Wait` key in its place. A layer that only `other` has is
    /// created, with a `Wait` key up to `frame` and none after. Equal to `replace(frame, 0,
    /// other)`.
    ///
    /// `introSize` grows by the frames inserted if `frame` is less than it; at `frame` equal to it
    /// they belong to the body. `outroSize` grows if `frame` is greater than the outro's first
    /// frame, so at the very end if there is an outro, and past the end even without one. (One that
    /// is longer than the animation stays.)
    ///
    /// An `other` without keys changes nothing. `other` is filled and checked like a copy, and what
    /// that throws leaves this one unchanged. Costs all keys of both.
    void insert(Animation other, unsigned int frame);

    /// Appends `other`: first this animation without its outro unless `keepOutro`, then `other`
    /// without its intro unless `keepIntro`.
    ///
    ///     this    | A A A A A | outro A A A |     other   | intro X | X X X X |
    ///     after   | A A A A A | X X X X |         pushBack(other, false, false)
    ///
    /// An outro or intro that is kept becomes part of the body. `outroSize` becomes that of
    /// `other`, even of one without keys. `introSize` stays. (Edits may have left an intro that
    /// reaches past the place where `other` begins; its size changes as `remove` and `insert` say.)
    ///
    /// Without layers here the result has those of `other`. An `other` without keys adds no layer,
    /// and still drops the outro unless it is kept. `other` is filled and checked like a copy after
    /// its intro is dropped; one that is copied in was so before, too. Costs all keys of both.
    void pushBack(Animation other, bool keepOutro, bool keepIntro);

    /// Takes the frames [start, start + count) out of every layer, as `removeInLayer` does, and off
    /// `introSize` and `outroSize` what was theirs. (Edits may have left an intro that reaches past
    /// the end. It loses all frames of the range before its own end, past the animation's too.)
    ///
    ///     before  | A A A | B B B B B |              introSize 3, remove(1, 4)
    ///     after   | A | B B B |                      introSize 1
    ///
    /// A `count` of 0, or a `start` at or past the end of the animation, changes nothing.
    /// Costs all keys.
    void remove(unsigned int start, unsigned int count);

    /// Calls `overrideLayerWith` for each layer of `other`, in the order of their names, creating
    /// those that are missing. Each fills up to the duration that the ones before it have left.
    ///
    ///     before  L | A A A A | B B B B |            overrideLayersWith(L = X(4) M = Y(2), 4)
    ///     after   L | A A A A | X X X X |
    ///             M | ~ ~ ~ ~ | Y Y | ~ ~ ~ ~ |      the filler was cut, its rest moved
    ///
    /// Sizes stay; an `other` without layers changes nothing. Costs all keys of both.
    void overrideLayersWith(const Animation& other, unsigned int frame);

    /// Sets `fps` to the duration in frames over `seconds`, so that the animation lasts so long. No
    /// key moves. Without keys or for an infinite `seconds` that is 0, for a NaN it is NaN, and for
    /// the smallest floats infinity. Throws std::invalid_argument if `seconds` is 0 or less.
    void setFPSToFitDurationInSeconds(float seconds);

    /// Back to no layers, sizes 0 and `defaultFps`, which is not checked.
    void reset();

    /// @}
    /// \name New animations from this one
    /// @{

    /// Appends the keys of the intro, the body and the outro of each layer to the layers of that
    /// name in the three maps, creating those that are missing, even if they stay empty. Keys
    /// across the intro's end or the outro's start are cut there.
    ///
    ///     layer   | A A A A | B B B B B B |      introSize 3, outroSize 2
    ///     parts   | A A A   | A | B B B B | B B |
    ///
    /// A layer shorter than the animation has less or nothing in the later parts. If edits left an
    /// intro that reaches past the outro's start, the body is empty, and the outro is all that
    /// comes after the intro. Entries under other names stay. If memory runs out, the keys appended
    /// so far stay too.
    /// Costs all keys.
    void introBodyOutroLayers(LayerMap& intro, LayerMap& body, LayerMap& outro) const;

    /// A copy that plays the body `count` times, between one intro and one outro; with
    /// `repeatIntro` and `repeatOutro` these come back around every body.
    ///
    ///     this               | intro | body | outro |
    ///     loop(2, no, no)    | intro | body | body | outro |
    ///     loop(2, yes, yes)  | intro | body | outro | intro | body | outro |
    ///     loop(0, ...)       | intro | outro |
    ///
    /// The layers are filled as in any copy; sizes and `fps` stay. A count of 1 gives a copy. With
    /// 0, keys across either end of the body are cut there, as `remove` does. With more, keys
    /// across the intro's end are cut there, and keys across the outro's start wherever the body
    /// repeats, but not before the last outro; nothing is cut if nothing repeats. Throws
    /// std::invalid_argument where the copy constructor does, if `defaultFps` is 0 or less with a
    /// `count` above 1 and any layer, and if the result would last 2^31 frames or more. Costs the
    /// keys of this animation and of the result.
    [[nodiscard]] Animation loop(unsigned int count, bool repeatIntro, bool repeatOutro) const;

    /// The piece before `frame` and the piece from it on. Keys across the cut are cut there.
    ///
    ///     before  | A A A A | B B B B B B |             splitAt(6, ...)
    ///     pieces  | A A A A | B B |       | B B B B |
    ///
    /// Each piece has the `fps` of this animation and every layer, with its own keys only: nothing
    /// is filled. An animation without keys gives pieces without layers. At frame 0 the first piece
    /// has no frames, at or past the end the last one.
    ///
    /// With `keepIntro` one piece is marked with the intro: the first one that ends where the intro
    /// does, or later. Its `introSize` is the part of the intro that lies in it. With `keepOutro`
    /// one piece is marked with the outro: the first one that ends where the outro begins, or
    /// later. Its `outroSize` is the part of the outro that lies in it, which is 0 if it ends right
    /// there. The last piece is never marked, and all other sizes are 0. Where layers differ in
    /// length, the first one to reach the boundary decides, and only what that one and those before
    /// it have in the piece is counted.
    ///
    /// Throws std::invalid_argument if `fps` is 0 or less. Costs all keys.
    [[nodiscard]] std::vector<Animation> splitAt(unsigned int frame, bool keepIntro,
                                                 bool keepOutro) const;

    /// The same for several cuts, in ascending order: one piece more than `frames`.
    /// Costs all keys and a layer entry for each layer of each piece.
    [[nodiscard]] std::vector<Animation> splitAt(std::set<unsigned int> frames, bool keepIntro,
                                                 bool keepOutro) const;

    /// The same for cuts in braces; `{}` stands for no cuts.
    [[nodiscard]] std::vector<Animation> splitAt(std::initializer_list<unsigned int> frames,
                                                 bool keepIntro, bool keepOutro) const {
        return splitAt(std::set<unsigned int>(frames), keepIntro, keepOutro);
    }

    /// The same for cuts at 0, `step`, 2 x `step` and so on up to the duration, itself included.
    ///
    ///     before  | A A A A | B B B B B B |             splitEach(4, ...)
    ///     pieces  |   | A A A A | B B B B | B B |
    ///
    /// The first piece is therefore always empty, and the last one too if `step` divides the
    /// duration. Throws std::invalid_argument if `step` is 0 or `fps` is 0 or less.
    /// Costs all keys and a layer entry for each layer of each piece: duration / `step` + 2 pieces.
    [[nodiscard]] std::vector<Animation> splitEach(unsigned int step, bool keepIntro,
                                                   bool keepOutro) const;

    /// @}

    /// Layers, sizes and frame rate, as floats compare: a NaN differs from itself, 0 equals -0.
    friend bool operator==(const Animation& a, const Animation& b) {
        return a.layers == b.layers && a.introSize == b.introSize && a.outroSize == b.outroSize &&
               a.fps == b.fps;
    }
    friend bool operator!=(const Animation& a, const Animation& b) { return !(a == b); }

    LayerMap layers;        ///< Every layer by its name.
    unsigned int introSize; ///< Frames, from frame 0.
    unsigned int outroSize; ///< Frames, back from the end.
    float fps;              ///< Frames per second.

protected:
    /// The checks of the constructors, on the layers as they are. Changes nothing.
    void _checkAttr();

    /// \name Cursor primitives
    /// A cursor is a frame and an iterator to the key that begins there, or to the end of its
    /// layer. A walk to `target` passes the keys that end at or before it: on a boundary it stops
    /// on the key that begins there, at or past the end it stops at the end, with `frame` the
    /// layer's total. If memory runs out, cursor and layers are what they were.
    /// @{

    /// Walks to `target`, or to the end of `layer` if `toEnd`, and appends the keys passed to
    /// `*out`, another vector than `layer`, unless that is null.
    static void _iterateOnLayer(unsigned int& frame, KeyVector::iterator& it, unsigned int target,
                                const KeyVector& layer, bool toEnd, KeyVector* out);
    /// Walks to `target`.
    static void _goToFrame(unsigned int& frame, KeyVector::iterator& it, unsigned int target,
                           const KeyVector& layer);
    /// Walks to `target` and appends the keys passed to `out`, another vector than `layer`.
    static void _subLayer(unsigned int& frame, KeyVector::iterator& it, unsigned int target,
                          const KeyVector& layer, KeyVector& out);
    /// Walks to the end and appends the keys passed to `out`, another vector than `layer`.
    static void _tailLayer(unsigned int& frame, KeyVector::iterator& it, const KeyVector& layer,
                           KeyVector& out);
    /// Walks to `target` and erases the keys passed. `frame` counts them nevertheless.
    static void _removeKeysOnTheWay(unsigned int& frame, KeyVector::iterator& it,
                                    unsigned int target, KeyVector& layer);
    /// Walks to `start` and takes the frames [start, start + count) out. Keys across either end are
    /// cut there; a range that would pass 2^32 - 1 goes to the end.
    ///
    /// Afterwards `it` is the first key after the range. `frame` is where that key began before
    /// anything was removed, or `start` if it was cut there too; at the end, the total before.
    static void _removeKeys(unsigned int& frame, KeyVector::iterator& it, KeyVector& layer,
                            unsigned int start, unsigned int count);
    /// @}
};

/// Frames of the longest layer, summed in 64 bits: what `durationInFrames` says, but for layers of
/// 2^32 frames or more. Costs all keys.
[[nodiscard]] inline std::uint64_t full_duration(const LayerMap& layers) {
    std::uint64_t longest = 0;
    for (const auto& [name, keys] : layers) {
        std::uint64_t total = 0;
        for (const AnimationKey& key : keys)
            total += key.duration;
        longest = std::max(longest, total);
    }
    return longest;
}

/// Writes a line with rate and sizes, and one for each layer:
///
///     25 fps, intro 2, outro 1
///     lamp: Hold (1) over 2, Transition (1, 0) over 4
///     motor: no keys
///
/// The same in every locale, as keys are; no line break at the end.
ANIMATIONMODEL_EXPORT std::ostream& operator<<(std::ostream& out, const Animation& animation);

} // namespace Kiv
