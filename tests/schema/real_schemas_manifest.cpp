#include "real_schemas_manifest.h"

#include <filesystem>
#include <iterator>
#include <map>

#include "qmxml/schema/schema_set.h"

namespace qmxml_realschemas {

using namespace QmXmlLib10;
using namespace QmXmlLib10::Schema;
namespace fs = std::filesystem;

const std::string kSharedDir = QMXML_SOURCE_DIR "/../shared/schemas";
const std::string kBundledDir = QMXML_TEST_DATA_DIR "/realschemas";

void PrintTo(const ValidDocument& d, std::ostream* os) { *os << d.set << "/" << d.document; }
void PrintTo(const InvalidDocument& d, std::ostream* os) { *os << d.set << "/" << d.document; }

// Generated from ../shared/schemas/manifest.json; the Manifest test keeps the
// two in step.
extern const ValidDocument kValidDocuments[];
const ValidDocument kValidDocuments[] = {
    {"gpx", "valid/gpsbabel_basecamp.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_basecamp"},
    {"gpx", "valid/gpsbabel_empty.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_empty"},
    {"gpx", "valid/gpsbabel_expertgps.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_expertgps"},
    {"gpx", "valid/gpsbabel_extensiondata_unicsv.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_extensiondata_unicsv"},
    {"gpx", "valid/gpsbabel_fitwrite-track.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_fitwrite_track"},
    {"gpx", "valid/gpsbabel_garmin-vivosmart-hr.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_garmin_vivosmart_hr"},
    {"gpx", "valid/gpsbabel_garmin_gpi_encoding.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_garmin_gpi_encoding"},
    {"gpx", "valid/gpsbabel_garmincategories.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_garmincategories"},
    {"gpx", "valid/gpsbabel_gdb-sample-v3-ilinks.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_gdb_sample_v3_ilinks"},
    {"gpx", "valid/gpsbabel_globalsat_gh625XT.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_globalsat_gh625XT"},
    {"gpx", "valid/gpsbabel_gpx_garmin_extensions.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_gpx_garmin_extensions"},
    {"gpx", "valid/gpsbabel_gpxpassthrough11.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_gpxpassthrough11"},
    {"gpx", "valid/gpsbabel_gtrnctr_power.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_gtrnctr_power"},
    {"gpx", "valid/gpsbabel_humminbird-rte-v3_gpx.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_humminbird_rte_v3_gpx"},
    {"gpx", "valid/gpsbabel_kalman_in.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_kalman_in"},
    {"gpx", "valid/gpsbabel_kalman_seen_track.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_kalman_seen_track"},
    {"gpx", "valid/gpsbabel_lowrance-utf16-test.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_lowrance_utf16_test"},
    {"gpx", "valid/gpsbabel_metadata.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_metadata"},
    {"gpx", "valid/gpsbabel_multiple-links-2.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_multiple_links_2"},
    {"gpx", "valid/gpsbabel_multiple-links.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_multiple_links"},
    {"gpx", "valid/gpsbabel_tcxtest.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_tcxtest"},
    {"gpx", "valid/gpsbabel_transform-names.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_transform_names"},
    {"gpx", "valid/gpsbabel_transform-rte.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_transform_rte"},
    {"gpx", "valid/gpsbabel_transform-wpt.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_transform_wpt"},
    {"gpx", "valid/gpsbabel_umsonstdraussen.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_umsonstdraussen"},
    {"gpx", "valid/gpsbabel_unknowntag.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_unknowntag"},
    {"gpx", "valid/gpsbabel_unknowntag2.gpx", "xsd/master.xsd", true, false, "Gpx_gpsbabel_unknowntag2"},
    {"gpx", "valid/gpxpy_around-visnjan-with-car.gpx", "xsd/master.xsd", true, false, "Gpx_gpxpy_around_visnjan_with_car"},
    {"gpx", "valid/gpxpy_gpx1.1_with_all_fields.gpx", "xsd/master.xsd", true, false, "Gpx_gpxpy_gpx1_1_with_all_fields"},
    {"gpx", "valid/gpxpy_gpx_with_garmin_extension.gpx", "xsd/master.xsd", true, false, "Gpx_gpxpy_gpx_with_garmin_extension"},
    {"gpx", "valid/gpxpy_unicode_with_bom_noencoding.gpx", "xsd/master.xsd", true, false, "Gpx_gpxpy_unicode_with_bom_noencoding"},
    {"gpx", "xmllint_false_negative/gpsbabel_garminconnect.gpx", "xsd/master.xsd", false, false, "Gpx_gpsbabel_garminconnect"},
    {"maven-pom-4.0.0", "valid/apache-maven__apache-maven__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_apache_maven_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__api__maven-api-annotations__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_api_maven_api_annotations_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__api__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_api_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__compat__maven-embedder__src__examples__simple-project__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_compat_maven_embedder_src_examples_simple_project_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__compat__maven-model-builder__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_compat_maven_model_builder_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__impl__maven-cli__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_impl_maven_cli_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__impl__maven-core__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_impl_maven_core_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__impl__maven-core__src__test__projects__lifecycle-executor__project-with-inheritance__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_impl_maven_core_src_test_projects_lifecycle_executor_project_with_inheritance_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__core-it-suite__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_core_it_suite_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-3372__dependency-tree__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_3372_dependency_tree_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-3748__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_3748_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-3839__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_3839_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-4072__pom-template.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_4072_pom_template"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-4283__sub__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_4283_sub_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-4403__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_4403_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-4561__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_4561_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-5019__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_5019_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-5639-import-scope-pom-resolution__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_5639_import_scope_pom_resolution_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__its__mng-6609__jar-no-packaging__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_its_mng_6609_jar_no_packaging_pom"},
    {"maven-pom-4.0.0", "valid/apache-maven__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_pom"},
    {"maven-pom-4.0.0", "valid/apache_maven-site__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_apache_maven_site_pom"},
    {"maven-pom-4.0.0", "valid/highsource_ogc-schemas__dist__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_highsource_ogc_schemas_dist_pom"},
    {"maven-pom-4.0.0", "valid/highsource_ogc-schemas__kml__2.2.0__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_highsource_ogc_schemas_kml_2_2_0_pom"},
    {"maven-pom-4.0.0", "valid/highsource_ogc-schemas__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_highsource_ogc_schemas_pom"},
    {"maven-pom-4.0.0", "valid/highsource_ogc-schemas__scripts__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_highsource_ogc_schemas_scripts_pom"},
    {"maven-pom-4.0.0", "valid/jakartaee_jaxb-api__api__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_jakartaee_jaxb_api_api_pom"},
    {"maven-pom-4.0.0", "valid/jakartaee_jaxb-api__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_jakartaee_jaxb_api_pom"},
    {"maven-pom-4.0.0", "valid/jasperkrijgsman_dutch-sepa-iso20022__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_jasperkrijgsman_dutch_sepa_iso20022_pom"},
    {"maven-pom-4.0.0", "valid/phax_ph-ubl__ph-ubl21__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_phax_ph_ubl_ph_ubl21_pom"},
    {"maven-pom-4.0.0", "valid/phax_ph-ubl__pom.xml", "xsd/maven-4.0.0.xsd", true, true, "Maven_phax_ph_ubl_pom"},
    {"iso20022-pain001", "valid/pain.001.001.03.ch.02_moov_musterfile_Nov2020.xml", "xsd/pain.001.001.03.ch.02.xsd", true, true, "Pain001_pain_001_001_03_ch_02_moov_musterfile_Nov2020"},
    {"iso20022-pain001", "valid/pain.001.001.03.ch.02_sepaking.xml", "xsd/pain.001.001.03.ch.02.xsd", true, true, "Pain001_pain_001_001_03_ch_02_sepaking"},
    {"iso20022-pain001", "valid/pain.001.001.03_dutchsepa_abn_voorbeeldbestand.xml", "xsd/pain.001.001.03.xsd", true, true, "Pain001_pain_001_001_03_dutchsepa_abn_voorbeeldbestand"},
    {"iso20022-pain001", "valid/pain.001.001.03_dutchsepa_example.xml", "xsd/pain.001.001.03.xsd", true, true, "Pain001_pain_001_001_03_dutchsepa_example"},
    {"iso20022-pain001", "valid/pain.001.001.03_dutchsepa_ing_voorbeeldbestand.xml", "xsd/pain.001.001.03.xsd", true, true, "Pain001_pain_001_001_03_dutchsepa_ing_voorbeeldbestand"},
    {"iso20022-pain001", "valid/pain.001.001.03_moov_International_payment_RUB_naujas_1.xml", "xsd/pain.001.001.03.xsd", true, true, "Pain001_pain_001_001_03_moov_International_payment_RUB_naujas_1"},
    {"iso20022-pain001", "valid/pain.001.001.03_moov_International_payment_USD_naujas_1.xml", "xsd/pain.001.001.03.xsd", true, true, "Pain001_pain_001_001_03_moov_International_payment_USD_naujas_1"},
    {"iso20022-pain001", "valid/pain.001.001.03_moov_gistfile1.xml", "xsd/pain.001.001.03.xsd", true, true, "Pain001_pain_001_001_03_moov_gistfile1"},
    {"iso20022-pain001", "valid/pain.001.001.03_moov_sepa_payment_naujas_1.xml", "xsd/pain.001.001.03.xsd", true, true, "Pain001_pain_001_001_03_moov_sepa_payment_naujas_1"},
    {"iso20022-pain001", "valid/pain.001.001.03_phpsepaxml.xml", "xsd/pain.001.001.03.xsd", true, false, "Pain001_pain_001_001_03_phpsepaxml"},
    {"iso20022-pain001", "valid/pain.001.001.03_sepaking.xml", "xsd/pain.001.001.03.xsd", true, true, "Pain001_pain_001_001_03_sepaking"},
    {"iso20022-pain001", "valid/pain.001.001.09_phpsepaxml.xml", "xsd/pain.001.001.09.xsd", true, false, "Pain001_pain_001_001_09_phpsepaxml"},
    {"iso20022-camt053", "valid/camt.053.001.02_dutch_camt.053.001.02.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_dutch_camt_053_001_02"},
    {"iso20022-camt053", "valid/camt.053.001.02_genkgo_camt053.v2.all-balance-types.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_genkgo_camt053_v2_all_balance_types"},
    {"iso20022-camt053", "valid/camt.053.001.02_genkgo_camt053.v2.five.decimals.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_genkgo_camt053_v2_five_decimals"},
    {"iso20022-camt053", "valid/camt.053.001.02_genkgo_camt053.v2.minimal.ultimate.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_genkgo_camt053_v2_minimal_ultimate"},
    {"iso20022-camt053", "valid/camt.053.001.02_genkgo_camt053.v2.minimal.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_genkgo_camt053_v2_minimal"},
    {"iso20022-camt053", "valid/camt.053.001.02_genkgo_camt053.v2.multi.statement.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_genkgo_camt053_v2_multi_statement"},
    {"iso20022-camt053", "valid/camt.053.001.02_genkgo_camt053.v2.with-account-name.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_genkgo_camt053_v2_with_account_name"},
    {"iso20022-camt053", "valid/camt.053.001.02_genkgo_camt053.v2.with-party-ids.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_genkgo_camt053_v2_with_party_ids"},
    {"iso20022-camt053", "valid/camt.053.001.02_genkgo_camt53.only-Dt-with-DtTm.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_genkgo_camt53_only_Dt_with_DtTm"},
    {"iso20022-camt053", "valid/camt.053.001.02_moov-io_FI_camt_053_sample.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_moov_io_FI_camt_053_sample"},
    {"iso20022-camt053", "valid/camt.053.001.02_moov-io_statement_1.xml", "xsd/camt.053.001.02.xsd", true, true, "Camt053_camt_053_001_02_moov_io_statement_1"},
    {"iso20022-camt053", "valid/camt.053.001.03_genkgo_camt053.v3.xml", "xsd/camt.053.001.03.xsd", true, true, "Camt053_camt_053_001_03_genkgo_camt053_v3"},
    {"iso20022-camt053", "valid/camt.053.001.04_genkgo_camt053.v4.xml", "xsd/camt.053.001.04.xsd", true, true, "Camt053_camt_053_001_04_genkgo_camt053_v4"},
    {"iso20022-camt053", "valid/camt.053.001.04_moov-io_camt.053_P_CH2909000000250094239_1110092698_0_2020112503071366.xml", "xsd/camt.053.001.04.xsd", true, true, "Camt053_camt_053_001_04_moov_io_camt_053_P_CH2909000000250094239_1110092698_0_2020112503071366"},
    {"iso20022-camt053", "valid/camt.053.001.08_genkgo_camt053.v8.xml", "xsd/camt.053.001.08.xsd", true, true, "Camt053_camt_053_001_08_genkgo_camt053_v8"},
    {"bpmn20", "valid/ad-hoc.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_ad_hoc",
     "Text differs at [/definitions/process/adHocSubProcess/task[1]/outgoing]: [FLOW] against [FLOW]"},
    {"bpmn20", "valid/category.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_category"},
    {"bpmn20", "valid/choreography-task.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_choreography_task"},
    {"bpmn20", "valid/compensate-event-definition.part.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_compensate_event_definition_part"},
    {"bpmn20", "valid/complex.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_complex",
     "Attribute [width] differs at [/definitions/BPMNDiagram/BPMNPlane/BPMNShape[2]/Bounds]: [1084.8155221183988] against [1084.815522118399]"},
    {"bpmn20", "valid/conversation-children.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_conversation_children",
     "Attribute [processRef] differs at [/definitions/collaboration/participant]: [Process_1] against [Process_1]"},
    {"bpmn20", "valid/data-input-association.assignment.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_data_input_association_assignment",
     "Text differs at [/definitions/process/startEvent/outgoing]: [SequenceFlow_00290c9] against [SequenceFlow_00290c9]"},
    {"bpmn20", "valid/di_bpmnEdge-waypoint.part.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_di_bpmnEdge_waypoint_part",
     "Attribute [bpmnElement] differs at [/BPMNEdge]: [sid-2365FF07-4092-4B79-976A-AD192FE4E4E9] against [sid-2365FF07-4092-4B79-976A-AD192FE4E4E9]"},
    {"bpmn20", "valid/documentation-extension-elements.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_documentation_extension_elements"},
    {"bpmn20", "valid/empty-definitions.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_empty_definitions"},
    {"bpmn20", "valid/example-colors.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_example_colors",
     "Text differs at [/definitions/process/subProcess/startEvent/outgoing]: [SequenceFlow_1] against [SequenceFlow_1]"},
    {"bpmn20", "valid/expression-plain.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_expression_plain",
     "Text differs at [/definitions/process/exclusiveGateway/outgoing]: [SequenceFlow_06jpd22] against [SequenceFlow_06jpd22]"},
    {"bpmn20", "valid/extension-attributes.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_extension_attributes"},
    {"bpmn20", "valid/extension_camunda_inputOutput.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_extension_camunda_inputOutput"},
    {"bpmn20", "valid/i18n.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_i18n",
     "Text differs at [/definitions/process/startEvent/outgoing]: [Flow_1lpbdia] against [Flow_1lpbdia]"},
    {"bpmn20", "valid/lane-children.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_lane_children",
     "Attribute [processRef] differs at [/definitions/collaboration/participant]: [Process_1] against [Process_1]"},
    {"bpmn20", "valid/link-event-definition-target.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_link_event_definition_target",
     "Text differs at [/definitions/process/intermediateThrowEvent/linkEventDefinition/target]: [ID1df1dbc4-6013-457c-840b-b7aae14f91e4] against [ID1df1dbc4-6013-457c-840b-b7aae14f91e4]"},
    {"bpmn20", "valid/multiInstanceLoopCharacteristics.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_multiInstanceLoopCharacteristics",
     "Attribute [structureRef] differs at [/definitions/itemDefinition[1]]: [Composite] against [Composite]"},
    {"bpmn20", "valid/namespace-prefix-collision.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_namespace_prefix_collision",
     "Attribute [bpmnElement] differs at [/definitions/BPMNDiagram/BPMNPlane]: [Process_1] against [Process_1]"},
    {"bpmn20", "valid/namespace-redefinition.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_namespace_redefinition",
     "Attribute [bpmnElement] differs at [/definitions/BPMNDiagram/BPMNPlane]: [Definitions] against [Definitions]"},
    {"bpmn20", "valid/nested-no-namespace-prefix.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_nested_no_namespace_prefix"},
    {"bpmn20", "valid/operation-ref-as-attribute.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_operation_ref_as_attribute",
     "Text differs at [/definitions/interface/operation/inMessageRef]: [fooInMessage] against [fooInMessage]"},
    {"bpmn20", "valid/scriptTask-script.part.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_scriptTask_script_part"},
    {"bpmn20", "valid/simple-default-ns.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_simple_default_ns"},
    {"bpmn20", "valid/simple.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_simple",
     "Text differs at [/definitions/process/subProcess/startEvent/outgoing]: [SequenceFlow_1] against [SequenceFlow_1]"},
    {"bpmn20", "valid/timerEventDefinition.part.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_timerEventDefinition_part"},
    {"bpmn20", "valid/vendor_bizagi-nested-ns-definition.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_vendor_bizagi_nested_ns_definition",
     "Attribute [bpmnElement] differs at [/definitions/BPMNDiagram/BPMNPlane]: [Id_6542cd13-ad91-46f4-a3ab-f8661c2ed4ee] against [Id_6542cd13-ad91-46f4-a3ab-f8661c2ed4ee]"},
    {"bpmn20", "valid/vendor_case-agile-local-ns-declaration.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_vendor_case_agile_local_ns_declaration",
     "Attribute [bpmnElement] differs at [/definitions/BPMNDiagram/BPMNPlane]: [_c2f769b2-3184-442a-944b-e6f88152a071] against [_c2f769b2-3184-442a-944b-e6f88152a071]"},
    {"bpmn20", "valid/vendor_signavio-complex-no-extensions.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_vendor_signavio_complex_no_extensions",
     "Attribute [width] differs at [/definitions/BPMNDiagram/BPMNPlane/BPMNShape[2]/Bounds]: [1084.8155221183988] against [1084.815522118399]"},
    {"bpmn20", "valid/vendor_yaoqiang-event-definitions.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_vendor_yaoqiang_event_definitions",
     "Attribute [y] differs at [/definitions/BPMNDiagram/BPMNPlane/BPMNEdge[1]/BPMNLabel/Bounds]: [227.56639096133566] against [227.5663909613357]"},
    {"bpmn20", "valid/xml-lang.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_xml_lang"},
    {"bpmn20", "valid/xsi-type.bpmn", "xsd/BPMN20.xsd", true, true, "Bpmn_xsi_type",
     "Attribute [processRef] differs at [/definitions/collaboration/participant]: [Process_1] against [Process_1]"},
};

extern const InvalidDocument kInvalidDocuments[];
const InvalidDocument kInvalidDocuments[] = {
    {"gpx", "invalid/gpxpy_gpx1.1_with_extensions.gpx", "xsd/master.xsd", false, "Gpx_gpxpy_gpx1_1_with_extensions",
     "Failed to process the element [gpx]\n\n"
     "Failed to process the element [wpt]\n\n"
     "Failed to process the element [extensions]\n\n"
     "Unexpected text [\n            hhh\n            \n        ] in the element [extensions]"},
    {"gpx", "invalid/gpxpy_gpx1.1_with_extensions_without_namespaces.gpx", "xsd/master.xsd", false, "Gpx_gpxpy_gpx1_1_with_extensions_without_namespaces",
     "Failed to process the element [gpx]\n\n"
     "Failed to process the element [wpt]\n\n"
     "Failed to process the element [extensions]\n\n"
     "Failed read all the elements held within the element [extensions]. The unexpected element [aaa] remains un processed"},
    {"maven-pom-4.0.0", "invalid/apache-maven__compat__maven-embedder__src__test__projects__root-attribute__child__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_compat_maven_embedder_src_test_projects_root_attribute_child_pom",
     "Failed to process the element [project]\n\n"
     "Failed to find the mandatory element [modelVersion]"},
    {"maven-pom-4.0.0", "invalid/apache-maven__compat__maven-embedder__src__test__projects__root-attribute__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_compat_maven_embedder_src_test_projects_root_attribute_pom",
     "Failed to process the element [project]\n\n"
     "Unexpected Attribute [root] found."},
    {"maven-pom-4.0.0", "invalid/apache-maven__impl__maven-core__src__test__resources__projects__badPom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_impl_maven_core_src_test_resources_projects_badPom",
     "Failed to process the element [project]\n\n"
     "Failed to find the mandatory element [artifactId]"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-2739__repo-id__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_2739_repo_id_pom",
     "Failed to process the element [project]\n\n"
     "Failed to process the element [repositories]\n\n"
     "Failed to process the element [repository]\n\n"
     "Failed to find the mandatory element [id]"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-2739__repo-url__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_2739_repo_url_pom",
     "Failed to process the element [project]\n\n"
     "Failed to process the element [repositories]\n\n"
     "Failed to process the element [repository]\n\n"
     "Failed to find the mandatory element [url]"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-3645__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_3645_pom",
     "Failed to process the element [project]\n\n"
     "Failed to process the element [dependencyManagement]\n\n"
     "Failed to process the element [dependencies]\n\n"
     "Failed read all the elements held within the element [dependencies]. The unexpected element [groupId] remains un processed"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-3810__property__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_3810_property_pom",
     "Failed to process the element [project]\n\n"
     "Failed to process the element [profiles]\n\n"
     "Failed to process the element [profile]\n\n"
     "Failed to process the element [activation]\n\n"
     "Failed to process the element [property]\n\n"
     "Failed to find the mandatory element [name]"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-3863__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_3863_pom",
     "Failed to process the element [project]\n\n"
     "Failed to process the element [dependencies]\n\n"
     "Failed to process the element [dependency]\n\n"
     "Failed to find the mandatory element [groupId]"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-4410__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_4410_pom",
     "Failed to process the element [project]\n\n"
     "Failed read all the elements held within the element [project]. The unexpected element [invalid] remains un processed"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-4411__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_4411_pom",
     "Failed to process the element [project]\n\n"
     "Failed read all the elements held within the element [project]. The unexpected element [invalid] remains un processed"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-4644__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_4644_pom",
     "Failed to process the element [project]\n\n"
     "Unexpected text [\n  \n\n"
     "  \n  \n  \n\n"
     "  \n  \n  This text must no...] in the element [project]"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-7965-pom-duplicate-tags__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_7965_pom_duplicate_tags_pom",
     "Failed to process the element [project]\n\n"
     "Failed read all the elements held within the element [project]. The unexpected element [repositories] remains un processed"},
    {"maven-pom-4.0.0", "invalid/apache-maven__its__mng-8750-new-scopes__validation-failure-test__pom.xml", "xsd/maven-4.0.0.xsd", true, "Maven_its_mng_8750_new_scopes_validation_failure_test_pom",
     "Failed to process the element [project]\n\n"
     "Failed to process the element [parent]\n\n"
     "Failed to find the mandatory element [groupId]"},
    {"iso20022-camt053", "invalid/camt.053.001.02_genkgo_camt053.v2.wrong.xml", "xsd/camt.053.001.02.xsd", true, "Camt053_camt_053_001_02_genkgo_camt053_v2_wrong",
     "Failed to process the element [Document]\n\n"
     "Failed to process the element [BkToCstmrStmt]\n\n"
     "The Minimum number of [Stmt] elements allowed in this collection is 1"},
    {"bpmn20", "invalid/association.part.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_association_part",
     "Failed to process the element [association]\n\n"
     "Failed to find the required Attribute [sourceRef]"},
    {"bpmn20", "invalid/di-extension.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_di_extension",
     "Failed to process the element [definitions]\n\n"
     "Failed to process the element [BPMNDiagram]\n\n"
     "Failed to process the element [BPMNPlane]\n\n"
     "Failed to process the element [extension]\n\n"
     "No global element declaration for the element [baz] of a strict wildcard"},
    {"bpmn20", "invalid/di_bpmnShape-isMarkerVisible.part.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_di_bpmnShape_isMarkerVisible_part",
     "Failed to process the element [BPMNShape]\n\n"
     "Failed to find a required element [Bounds]"},
    {"bpmn20", "invalid/error_categoryValue.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_error_categoryValue",
     "Failed to process the element [definitions]\n\n"
     "Failed read all the elements held within the element [definitions]. The unexpected element [categoryValue] remains un processed"},
    {"bpmn20", "invalid/error_duplicate-ids.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_error_duplicate_ids",
     "Duplicate ID value [test]"},
    {"bpmn20", "invalid/error_not-bpmn.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_error_not_bpmn",
     "No global element declaration for the root element [{http://not-bpmn}definitions]"},
    {"bpmn20", "invalid/error_undeclared-ns-child.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_error_undeclared_ns_child",
     "Failed to process the element [definitions]\n\n"
     "Failed read all the elements held within the element [definitions]. The unexpected element [someElement] remains un processed"},
    {"bpmn20", "invalid/error_unrecognized-child.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_error_unrecognized_child",
     "Failed to process the element [definitions]\n\n"
     "Failed read all the elements held within the element [definitions]. The unexpected element [unrecognized] remains un processed"},
    {"bpmn20", "invalid/extension-elements.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_extension_elements",
     "Failed to process the element [definitions]\n\n"
     "Failed read all the elements held within the element [definitions]. The unexpected element [extensionElements] remains un processed"},
    {"bpmn20", "invalid/itemDefinition-structureRef.part.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_itemDefinition_structureRef_part",
     "The prefix of the QName [foo:Service] of [structureRef] is not declared"},
    {"bpmn20", "invalid/sequenceFlow-conditionExpression.part.bpmn", "xsd/BPMN20.xsd", true, "Bpmn_sequenceFlow_conditionExpression_part",
     "Failed to process the element [sequenceFlow]\n\n"
     "Failed to find the required Attribute [sourceRef]"},
};

const std::size_t kValidDocumentCount = std::size(kValidDocuments);
const std::size_t kInvalidDocumentCount = std::size(kInvalidDocuments);

std::string SetFolder(const std::string& set, bool bundled) {
    if (bundled) return kBundledDir + "/" + set;
    if (fs::is_directory(kSharedDir + "/" + set)) return kSharedDir + "/" + set;
    return std::string();
}

// Loading a schema set and building its classes is the costly part; each test
// process does it once per main schema.
std::shared_ptr<const CDynamicClassSet> ClassesFor(const std::string& schemaPath) {
    static std::map<std::string, std::shared_ptr<const CDynamicClassSet>> cache;
    auto found = cache.find(schemaPath);
    if (found != cache.end()) return found->second;
    auto classes = CDynamicClassSet::Create(CSchemaSet::LoadFile(schemaPath));
    cache.emplace(schemaPath, classes);
    return classes;
}

// Written as `qmxml convert --schema` writes: xsi:type on members holding a
// derived type, the root's namespace as the default one.
CXmlSerializationContext WriteContext() {
    CXmlSerializationContext ctx;
    ctx.SetWriteTypeAttribute(true);
    return ctx;
}

}  // namespace qmxml_realschemas
