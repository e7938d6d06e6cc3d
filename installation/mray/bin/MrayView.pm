# SPDX-License-Identifier: Apache-2.0
# Makes a shader show something other than its own picture: what a view looks at,
# in a tint.
#
# The shader's main gets another name and a new main stands behind it, so that the
# lines keep their numbers in what the compiler says.

package MrayView;

use strict;
use warnings;

# What stands in the new main. Views that leave out the shader show the object as
# it is without it.
my %views = (
	shaded => ['mrShade();'],
	clay => ['tvColor = vec4(0.5 * tvLambert(normalize(tvNormal), tvPosition), 1.0);'],
	normals => ['tvColor = vec4(0.5 * normalize(tvNormal) + 0.5, 1.0);'],
	coordinates => ['tvColor = vec4(tvUV, 0.0, 1.0);'],
	alpha => ['mrShade();', 'tvColor = vec4(vec3(tvColor.a), 1.0);'],
);

# The text of a shader that shows the view; @tint are the factors on red, green and
# blue. Text without a main stays as it is: what is wrong with it is for the compiler
# to tell.
sub of {
	my ($text, $view, @tint) = @_;
	# Comments may speak of a main; the last one is the shader's.
	$text =~ s/^(.*^[ \t]*void[ \t]+)main([ \t]*\()/$1mrShade$2/ms or return $text;
	my $factors = join ', ', map { sprintf '%.6f', $_ } @tint;
	return join "\n", $text, 'void main()', '{', (map { "    $_" } @{ $views{$view} }, "tvColor.rgb *= vec3($factors);"),
		"}\n";
}

1;
