// The whole protocol codec in one include.
#pragma once

#include "tq_stack/config.h"
#include "tq_stack/enums.h"
#include "tq_stack/values.h"

#include "tq_stack/bacapp.h"
#include "tq_stack/bactext.h"
#include "tq_stack/bip.h"
#include "tq_stack/codec.h"
#include "tq_stack/datetime.h"
#include "tq_stack/references.h"
#include "tq_stack/strings.h"
#include "tq_stack/validate.h"

#include "tq_stack/apdu.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/cov.h"
#include "tq_stack/iam.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm.h"
#include "tq_stack/rr.h"
#include "tq_stack/timesync.h"
#include "tq_stack/whois.h"
#include "tq_stack/wp.h"

#include "tq_stack/bvlc.h"
#include "tq_stack/create_object.h"
#include "tq_stack/npdu.h"
#include "tq_stack/rpm_server.h"
#include "tq_stack/segment.h"
