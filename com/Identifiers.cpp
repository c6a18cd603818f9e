// The identifiers that headers only declare, defined once in each module and program.
#include <initguid.h>

#include "HVRPublishToFlickr.h"
#include "HostContract.h"
#include "RegistrarInterface.h"
#include "WebComponents.h"
#include "XmlInterfaces.h"

#include <wincodec.h>
