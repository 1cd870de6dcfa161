// The windows of the QMF banks. Each name stands for a routine of order 4 and one of order 5,
// and, marked _s, once more for short samples.
#pragma once

#include "mvk_qmf.h"

extern "C" {
mvk_qmf_ana_window mvk_qmf_ana_window_p4, mvk_qmf_ana_window_p5;
mvk_qmf_ana_window mvk_qmf_ana_window_cplx_p4, mvk_qmf_ana_window_cplx_p5;
mvk_qmf_ana_window mvk_qmf_ana_window_s_p4, mvk_qmf_ana_window_s_p5;
mvk_qmf_ana_window mvk_qmf_ana_window_cplx_s_p4, mvk_qmf_ana_window_cplx_s_p5;

mvk_qmf_syn_window mvk_qmf_syn_window_p4, mvk_qmf_syn_window_p5;
mvk_qmf_syn_window mvk_qmf_syn_window_cplx_p4, mvk_qmf_syn_window_cplx_p5;
mvk_qmf_syn_window mvk_qmf_syn_window_cplx_head1bit_p4, mvk_qmf_syn_window_cplx_head1bit_p5;
mvk_qmf_syn_window mvk_qmf_syn_window_s_p4, mvk_qmf_syn_window_s_p5;
mvk_qmf_syn_window mvk_qmf_syn_window_cplx_s_p4, mvk_qmf_syn_window_cplx_s_p5;
}
