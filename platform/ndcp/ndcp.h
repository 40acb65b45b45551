/*
 * ndcp.h - the discovery library: finds the cameras of the local network and reads and writes
 * their network configuration.
 *
 * Threads: a client is used from one thread (the client program's GUI thread). The callback runs
 * on a thread of the library and must not call it. No call waits for the network.
 *
 * Texts of a record: UTF-8, both ways, for a library that says so by ndcp_takes_utf8(), and Latin-1
 * for a library of another maker, which has no such function. Ours is of the first kind: texts from
 * devices are valid UTF-8, cut on the border of a character; it takes no other encoding.
 *
 * Requests (discover, get_conf, set_conf) give 0 when they have started: then their event comes
 * once. Negative means that they have not, and no event follows.
 */
#ifndef ZELVARO_NDCP_H
#define ZELVARO_NDCP_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define NDCP_API
#else
#define NDCP_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* C names. NOLINTBEGIN(readability-identifier-naming) */

/* First argument of the callback. */
enum
{
    NDCP_EVENT_DISCOVERY = 1, /* a search has finished; the device table may be read */
    NDCP_EVENT_GET_CONF = 2,  /* ndcpclient_get_conf has finished */
    NDCP_EVENT_SET_CONF = 3   /* ndcpclient_set_conf has finished */
};

/* Second argument of the callback; 0 is success. */
enum
{
    NDCP_ERROR_NETWORK = -1,       /* no answer */
    NDCP_ERROR_AUTHORIZATION = -2, /* user name or password refused */
    NDCP_ERROR_GET_CONF = -3,      /* the device did not return its configuration, or the record
                                      that is to be written was never read */
    NDCP_ERROR_SET_CONF = -4       /* the device did not take the configuration */
};

/*
 * One device, 408 bytes. Texts are NUL-terminated and cut to their fields. Numbers are in host
 * order; addresses are IPv4 as 32-bit numbers (127.0.0.1 is 0x7F000001), 0 when unknown. A search
 * fills mac to uid; manual_ip to dns2 are 0 until they were read.
 */
typedef struct ndcp_device
{
    uint8_t mac[6];
    uint8_t reserved[10]; /* the library's own: what was read into this record; keep it */
    uint32_t ip;
    int16_t http_port; /* of the device's web pages: 80 until its configuration was read */
    char model[32];
    char name[32];
    char location[128];
    char uid[42];
    uint32_t manual_ip; /* non-zero: the address was assigned by hand, not by DHCP */
    uint32_t mask;
    uint32_t gateway;
    uint32_t manual_dns;
    uint32_t dns1;
    uint32_t dns2;
    char username[64]; /* for configuration requests; set by the caller */
    char password[64];
} ndcp_device;

/* Opaque: one client. */
typedef struct ndcp_client ndcp_client;

/* message: an NDCP_EVENT_ value; error: 0 or an NDCP_ERROR_ value; user as given to create. */
typedef void (*ndcp_callback)(int message, int error, void *user);

/* Whether all texts are UTF-8: 1. Looked up at run time by clients that also run with the library
 * of another maker. From any thread. */
NDCP_API int ndcp_takes_utf8(void);

/* Makes a client; NULL when none can be made. */
NDCP_API ndcp_client *ndcpclient_create(ndcp_callback callback, void *user);

/* Starts a search and returns at once; NDCP_EVENT_DISCOVERY reports the end, after about 3 s. A
 * second search while one is under way shares its end and its one event. */
NDCP_API int ndcpclient_discover(ndcp_client *client);

/* Number of devices that the last finished search found, at most 1,000. */
NDCP_API int32_t ndcpclient_getcnt(ndcp_client *client);

/* Device at index (from 0), NULL past the end. Owned by the client, valid until the next search is
 * started, also while one is under way. */
NDCP_API const ndcp_device *ndcpclient_getdev(ndcp_client *client, int32_t index);

/*
 * Reads the network configuration of the device into the record, with the record's user name and
 * password. The library writes to the record on its own thread, just before NDCP_EVENT_GET_CONF
 * and only on success: until then it must stay valid and be left alone.
 *
 * The password is sent by HTTP digest, as a WS-Security digest, or over TLS. It is never sent in
 * clear to a device that was found by its UID, because any device may claim that.
 */
NDCP_API int ndcpclient_get_conf(ndcp_client *client, ndcp_device *device);

/*
 * Writes the record's network configuration to the device; ends with NDCP_EVENT_SET_CONF, usually
 * at once, after up to 15 s where the device takes its time, and after up to 30 s more when it has
 * to be found again at its new address. The record is copied before the call returns.
 *
 * Only what differs from what the device has is written. Of a record that no get_conf has filled
 * since the search, name and location are; if anything else in it is no longer as the search left
 * it, nothing is written and the error is NDCP_ERROR_GET_CONF: the rest of its values are nobody's.
 * What a device did not report is written only where the record has a value. Before anything is
 * written, the device that answers is compared with the record, by hardware address or by UID.
 */
NDCP_API int ndcpclient_set_conf(ndcp_client *client, ndcp_device *device);

/* Destroys the client. No callback runs during or after the call. */
NDCP_API void ndcpclient_delete(ndcp_client *client);

/* NOLINTEND(readability-identifier-naming) */

#ifdef __cplusplus
}
#endif

#endif
