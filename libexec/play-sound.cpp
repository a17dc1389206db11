// play-sound FILE: plays one sound file as an event sound and ends with it.
//
// A process of its own, because reaching a sound server can take long, can hang, and fills memory that a
// program in the tray should not keep. Whatever goes wrong, nothing is heard and that is all.

#include <canberra.h>
#include <semaphore.h>
#include <unistd.h>

namespace {

constexpr unsigned longestSeconds = 30; // no event sound is longer, but a server can hang

void reportEnd(ca_context *, uint32_t, int, void *ended) {
    sem_post(static_cast<sem_t *>(ended));
}

bool play(ca_context *context, const char *file) {
    ca_context_change_props(context, CA_PROP_APPLICATION_NAME, "Pavonel", CA_PROP_APPLICATION_ID,
                            "org.pavonel.Pavonel", CA_PROP_APPLICATION_ICON_NAME, "pavonel", nullptr);
    ca_proplist *sound = nullptr;
    if (ca_proplist_create(&sound) != CA_SUCCESS)
        return false;
    ca_proplist_sets(sound, CA_PROP_MEDIA_FILENAME, file);
    ca_proplist_sets(sound, CA_PROP_MEDIA_NAME, "Break sound");
    ca_proplist_sets(sound, CA_PROP_MEDIA_ROLE, "event"); // plays at the volume of system sounds
    sem_t ended;
    sem_init(&ended, 0, 0);
    const bool started = ca_context_play_full(context, 1, sound, reportEnd, &ended) == CA_SUCCESS;
    ca_proplist_destroy(sound);
    while (started && sem_wait(&ended) != 0) {
    }
    return started;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2)
        return 64;
    alarm(longestSeconds);
    ca_context *context = nullptr;
    if (ca_context_create(&context) != CA_SUCCESS)
        return 1;
    const bool played = play(context, argv[1]);
    ca_context_destroy(context);
    return played ? 0 : 1;
}
