// The identifiers that test programs refer to by name, defined once for each program.
#include <initguid.h>

#include "HVRPublishToFlickr.h"
#include "HostContract.h"
#include "RegistrarInterface.h"
#include "WebComponents.h"
#include "XmlInterfaces.h"

#include <wincodec.h>
