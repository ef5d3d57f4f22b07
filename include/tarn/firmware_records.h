/*
 * The firmware records that the module and the host share by pointer, with C's natural alignment. All texts
 * are NUL-terminated.
 */
#ifndef TARN_FIRMWARE_RECORDS_H
#define TARN_FIRMWARE_RECORDS_H

#include <pthread.h>
#include <stdint.h>
#include <time.h>

#ifdef __cplusplus
extern "C" {
#endif

#define TARN_FIRMWARE_IMAGES 64

/* An image of the firmware directory; version and description are empty where its header is not readable. */
struct AcsFirmwareFile {
    char file_name[255];
    char version[64];
    char description[1024];
};

/* What the image's parameter file says; has_spec is 1 when that was read whole. */
struct AcsFirmwareSpecific {
    uint8_t has_spec;
    char software_version[64];
    char vendor[5];
    char equipment_list[1024];
};

enum AcsDownloadState {
    acs_download_idle = 0,
    acs_download_running = 1,
    acs_download_succeeded = 2,
    acs_download_failed = 3,
};

/*
 * The catalogue of the firmware directory and the state of the last download. specifics[k] describes
 * files[k]; files_count of both are valid. `lock` guards the request (server_address, remote_path) and
 * download_state; the request may be written while no download is running.
 */
struct AcsFirmwareCache {
    struct AcsFirmwareFile files[TARN_FIRMWARE_IMAGES];
    struct AcsFirmwareSpecific specifics[TARN_FIRMWARE_IMAGES];
    uint8_t reserved[1024];
    uint8_t files_count;
    pthread_mutex_t lock;
    uint8_t server_address[4]; /* of the TFTP server, first octet first */
    char remote_path[256];
    uint32_t download_state;     /* enum AcsDownloadState */
    struct timespec files_stamp; /* monotonic time of the last listing; zero: stale */
};

/* A rule of the automatic firmware updates. */
struct AutoUpdateEntry {
    char description[32]; /* the key */
    char equipment_id[32];
    char fw_version[32];
    char file_name[255];
    uint32_t mode; /* 0 disable, 1 immediate, 2 postpone, 3 global; 255: another word stood in the file */
};

#ifdef __cplusplus
}
#endif

#endif
