/* The headers of the two platform libraries are plain C: another maker's library may be written in
 * it. Compiled only. */
#include "platform/cammgr/cammgr.h"
#include "platform/ndcp/ndcp.h"

#define AT(field, offset)                                                                          \
    _Static_assert(offsetof(ndcp_device, field) == (offset), "the record is fixed to the byte")

AT(mac, 0);
AT(reserved, 6);
AT(ip, 16);
AT(http_port, 20);
AT(model, 22);
AT(name, 54);
AT(location, 86);
AT(uid, 214);
AT(manual_ip, 256);
AT(mask, 260);
AT(gateway, 264);
AT(manual_dns, 268);
AT(dns1, 272);
AT(dns2, 276);
AT(username, 280);
AT(password, 344);
_Static_assert(sizeof(ndcp_device) == 408, "the record is fixed to the byte");
