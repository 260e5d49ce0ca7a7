# What an embedder may include. These headers are installed below <prefix>/include/chalkpane, and nothing else is: row
# kernels, planes, caches and the classes behind the brush and the registry of filters change without notice.
#
# A public header includes no other headers of the library than public ones; tests/repository checks this, and compiles
# each of them alone against an installed copy. Paths are from the root of the repository.
set(chalkpane_public_headers
    # base: how many workers there are, which processor features are used, and the numbers that noise and speckle draw
    chalkpane/base/cpu_features.h
    chalkpane/base/multi_processor.h
    chalkpane/base/random.h
    # image: rectangles, pixels, zoom levels
    chalkpane/image/halve_image.h
    chalkpane/image/image.h
    chalkpane/image/mr_image.h
    chalkpane/image/pixel_format.h
    chalkpane/image/rect.h
    chalkpane/image/sampling.h
    chalkpane/image/soft_mask.h
    # parameters: what a brush and a filter declare, and the values that they are given
    chalkpane/parameters/animation/animated_file_name.h
    chalkpane/parameters/animation/animated_map_xy.h
    chalkpane/parameters/animation/animated_numbers.h
    chalkpane/parameters/animation/animated_position.h
    chalkpane/parameters/animation/animated_typed.h
    chalkpane/parameters/animation/animated_value.h
    chalkpane/parameters/animation/animation_clock.h
    chalkpane/parameters/animation/colour_spline.h
    chalkpane/parameters/animation/key.h
    chalkpane/parameters/animation/key_components.h
    chalkpane/parameters/colour.h
    chalkpane/parameters/compound_values.h
    chalkpane/parameters/data_set.h
    chalkpane/parameters/file_name.h
    chalkpane/parameters/font_value.h
    chalkpane/parameters/graph_value.h
    chalkpane/parameters/number_conversion.h
    chalkpane/parameters/number_pair.h
    chalkpane/parameters/parameter_def.h
    chalkpane/parameters/parameter_list.h
    chalkpane/parameters/parameter_table.h
    chalkpane/parameters/parameter_value.h
    chalkpane/parameters/parameterised_object.h
    chalkpane/parameters/scalar_values.h
    chalkpane/parameters/shape_point_list.h
    chalkpane/parameters/string_value.h
    chalkpane/parameters/text/text_scanner.h
    chalkpane/parameters/text/text_sink.h
    chalkpane/parameters/text/value_text.h
    chalkpane/parameters/typed_value.h
    chalkpane/parameters/undo_data.h
    # transform: one image moved, scaled and rotated
    chalkpane/transform/matrix3.h
    chalkpane/transform/transformer.h
    # filters: the interface, the prototypes to clone, and what a filter of one's own derives from
    chalkpane/filters/filter.h
    chalkpane/filters/filter_chain.h
    chalkpane/filters/filter_class.h
    chalkpane/filters/filter_registry.h
    chalkpane/filters/point_filter.h
    # composite: one image over another, with the blend modes
    chalkpane/composite/blending_modes.h
    chalkpane/composite/brush_paster.h
    chalkpane/composite/eraser.h
    chalkpane/composite/paste_record.h
    chalkpane/composite/paster.h
    # brush: strokes on an image
    chalkpane/brush/basic_brush.h
    chalkpane/brush/brush_choices.h
    chalkpane/brush/image_loader.h
    chalkpane/brush/profiles/brush_profile.h
    chalkpane/brush/profiles/profile_preset.h
    chalkpane/brush/sources/brush_source.h
    chalkpane/brush/sources/source_types.h
    chalkpane/brush/spline_iterator.h
    chalkpane/brush/spline_weights.h)
