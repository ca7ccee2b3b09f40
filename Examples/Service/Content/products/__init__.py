"""The products of the catalogue, modelled after their pictures."""

from . import gaming, home, refreshment, sound, sport, style

MODELS = {
    "halo-one": sound.headphones,
    "volt-runner": sport.running_shoe,
    "nightberry": refreshment.can,
    "meridian-40": style.watch,
    "driftline": sport.skateboard,
    "apex-wheel": gaming.racing_wheel,
    "fieldpack": style.backpack,
    "slow-morning": home.mug,
    "arc-lamp": home.lamp,
    "solstice": style.sunglasses,
    "pebble": sound.speaker,
    "matchday": sport.match_ball,
    "grandstand": gaming.controller,
    "coldbrook": refreshment.bottle,
    "gift-card": refreshment.gift_card,
}
