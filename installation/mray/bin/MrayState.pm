# SPDX-License-Identifier: Apache-2.0
# A state of the network that is being worked on, as the program tells of it: a
# directory with the files codegenfile, linemap, render_options and name.

package MrayState;

use strict;
use warnings;

use constant LARGEST => 64 << 20;

my $here = __FILE__ =~ m{^(.*)/}s ? $1 : '.';
$here = "./$here" unless $here =~ m{^\.{0,2}/|^\.\.?\z};
require "$here/$_.pm" for qw(MrayFilter MrayOptions);

# The name of the shader, on one line.
sub name_of {
	my ($dir) = @_;
	my $name = contents("$dir/name");
	$name =~ s/[\x00-\x20\x7f]+/ /g;
	$name =~ s/^ | \z//g;
	return substr $name, 0, 200;
}

# Reads the state and makes its shader. $say is given lines about things that are no
# failure. Gives the options and what MrayFilter::make does. Dies with a reference to
# lines, which tell the user what is wrong.
sub read_from {
	my ($dir, $name, $say) = @_;
	my $fail = sub { die [map { "$name: $_" } @_] };
	my @lines = split /\n/, contents("$dir/codegenfile");
	s/\r$// for @lines;
	my ($options, $trouble) = MrayOptions::read_file("$dir/render_options");
	die [$trouble] if $trouble;
	local $ENV{TAVRN_RENOPTS} = "$dir/render_options";
	my $type = MrayShader::shader_type(MrayShader::options($fail), $fail);
	my $made = MrayFilter::make($name, $type, \@lines, "$dir/linemap", $say, $fail);
	MrayFilter::refuse_other_files($made);
	return ($options, $made);
}

sub contents {
	my ($path) = @_;
	open my $file, '<:raw', $path or die ["cannot read $path: $!"];
	-f $file or die ["cannot read $path: it is no file"];
	-s _ <= LARGEST or die ["cannot read $path: it is larger than " . (LARGEST >> 20) . ' MB'];
	local $/;
	return <$file> // '';
}

1;
