from animationmodel import Animation, Hold, Key, Transition

lamp = Animation({"lamp": [Key(Transition, [0, 1], 10), Key(Hold, [1], 20)]}, intro_size=10)
lamp.insert_in_layer("lamp", Key(Hold, [0.5], 5), 16)  # dims at frame 16: the Hold is cut
looped = lamp.loop(3, repeat_intro=False, repeat_outro=False)
print(looped.duration_in_frames(), "frames:", looped.sample())  # numpy, frames x layers
looped.save("lamp.json")
